#include "terminal/TerminalFixture.h"

#include <QCryptographicHash>
#include <QDir>

namespace lmp {

/// What the terminal keeps on this machine, and `lumenpair drafts`.
class DraftCommandsTest : public TerminalFixture {};

TEST_F(DraftCommandsTest, FailedSaveIsANoteAndADraft) {
    fault(R"({"route":"/app/conversation/sync","times":-1,"status":500})");
    const auto turn = run({u"chat"_s, u"--jsonl"_s, u"别丢了我"_s});
    EXPECT_EQ(turn.code, 0);
    EXPECT_TRUE(turn.err.contains(u"尚未同步，草稿已保存在本机，连接恢复后可重试。"_s)) << turn.err.toStdString();
    const auto listed = run({u"conversations"_s, u"list"_s});
    EXPECT_TRUE(listed.out.contains(u"草稿"_s)) << listed.out.toStdString();
    const auto id = QString::fromStdString(std::string(turn.events().front().at("conversationId").as_string()));
    EXPECT_TRUE(run({u"conversations"_s, u"show"_s, id}).out.contains(u"别丢了我"_s));

    fault({});
    const auto next = run({u"chat"_s, u"--conversation"_s, id, u"现在呢"_s});
    EXPECT_EQ(next.code, 0) << next.err.toStdString();
    EXPECT_EQ(look(u"/api/app/conversations"_s, m_token).at("conversations").as_array().size(), 1u);
    EXPECT_FALSE(run({u"conversations"_s, u"list"_s}).out.contains(u"草稿"_s));
}

TEST_F(DraftCommandsTest, DraftsAreListedAndDiscardedWhenAsked) {
    EXPECT_TRUE(run({u"drafts"_s, u"list"_s}).err.contains(u"本机没有草稿。"_s));
    fault(R"({"route":"/app/conversation/sync","times":-1,"status":500})");
    const auto turn = run({u"chat"_s, u"--jsonl"_s, u"没同步的话"_s});
    const auto id = QString::fromStdString(std::string(turn.events().front().at("conversationId").as_string()));
    // What a window left in that conversation's input box.
    const QString user = run({u"whoami"_s}).out.section(u'\n', 0, 0).section(u'：', 1);
    const QString folder = m_home.filePath(u"data/Lumenpair/UnsentInput/v1/"_s);
    ASSERT_TRUE(QDir().mkpath(folder));
    const QString site = m_site.toString(QUrl::StripTrailingSlash);
    const QByteArray key = Json::encode(QList<QString>{site, user, id});
    const auto name = QCryptographicHash::hash(key, QCryptographicHash::Sha256).toHex();
    QFile box(folder + QString::fromLatin1(name) + u".json"_s);
    ASSERT_TRUE(box.open(QIODevice::WriteOnly));
    box.write(
        R"({"id":")" + id.toUtf8() +
        R"(","writeId":"w","title":"","cloudRevision":0,"updatedAt":"","input":{"text":"半句","parts":[],"intent":""}})");
    box.close();

    const auto listed = run({u"drafts"_s, u"list"_s});
    EXPECT_TRUE(listed.out.contains(id + u"\t没同步的话（对话草稿，尚未同步）\n"_s)) << listed.out.toStdString();
    EXPECT_TRUE(listed.out.contains(id + u"\t半句（未发送输入）\n"_s));
    const auto shown = run({u"drafts"_s, u"show"_s, id});
    EXPECT_TRUE(shown.out.contains(u"你：没同步的话"_s) && shown.out.endsWith(u"半句\n"_s)) << shown.out.toStdString();
    const auto records = run({u"drafts"_s, u"show"_s, id, u"--jsonl"_s}).events();
    ASSERT_EQ(records.size(), 2);
    EXPECT_EQ(records[0].at("conversation").at("messages").at(0).at("text"), "没同步的话");
    EXPECT_EQ(records[1].at("input").at("text"), "半句");
    EXPECT_EQ(run({u"drafts"_s, u"list"_s}, {}, signIn(u"13900000009"_s)).out, QString()) << "somebody else's";

    for (const QByteArray answer : {"", "\n", "n\n"})
        EXPECT_NE(run({u"drafts"_s, u"discard"_s, id}, answer).code, 0);
    EXPECT_EQ(run({u"drafts"_s, u"list"_s}).out, listed.out) << "all of it is still there";
    EXPECT_EQ(run({u"drafts"_s, u"discard"_s, u"nobody"_s, u"--yes"_s}).code, 1);
    EXPECT_EQ(run({u"drafts"_s, u"discard"_s, u"--yes"_s}).code, 2) << "all of nothing is nothing";
    EXPECT_EQ(run({u"drafts"_s, u"discard"_s, id}, u"丢弃\n"_s.toUtf8()).code, 0);
    EXPECT_EQ(run({u"drafts"_s, u"list"_s}).out, QString());
    EXPECT_FALSE(box.exists());

    ASSERT_TRUE(box.open(QIODevice::WriteOnly));
    box.write("{");
    box.close();
    const auto broken = run({u"drafts"_s, u"list"_s});
    EXPECT_EQ(broken.code, 1);
    EXPECT_TRUE(broken.err.contains(u"有未发送输入暂时无法读取，原文件已保留。"_s)) << broken.err.toStdString();
    EXPECT_EQ(run({u"drafts"_s, u"discard"_s, id, u"--yes"_s}).code, 1);
    EXPECT_TRUE(box.exists());
    EXPECT_TRUE(broken.err.contains(box.fileName())) << "it can be found";
    EXPECT_EQ(run({u"drafts"_s, u"discard"_s, u"--unreadable"_s}, "\n").code, 130);
    EXPECT_TRUE(box.exists());
    EXPECT_EQ(run({u"drafts"_s, u"discard"_s, u"--unreadable"_s, u"--yes"_s}).code, 0);
    EXPECT_EQ(run({u"drafts"_s, u"list"_s}).code, 0);
}

TEST_F(DraftCommandsTest, ADraftIsKeptWhileNobodyCanSayWhoIsThere) {
    EXPECT_EQ(run({u"whoami"_s}).code, 0);
    fault(R"({"route":"/app/*","times":-1,"status":500})");
    EXPECT_EQ(run({u"chat"_s, u"断网时说的话"_s}).code, 0);
    fault({});
    EXPECT_TRUE(run({u"conversations"_s, u"list"_s}).out.contains(u"断网时说的话（草稿，尚未同步）"_s));
    // Somebody else's token finds nothing of it.
    const auto other = run({u"conversations"_s, u"list"_s}, {}, signIn(u"13900000009"_s));
    EXPECT_EQ(other.code, 0);
    EXPECT_FALSE(other.out.contains(u"断网"_s));
}

TEST_F(DraftCommandsTest, AKilledProgramLosesNoInput) {
    QProcess program;
    const QByteArray out = sayAndStall(program, u"别丢了这句"_s);
    ASSERT_TRUE(out.contains("\"delta\""));
    // The input goes to the disk beside the request, and while the reply is still on its way.
    ASSERT_TRUE(eventually([&] { return isOnDisk("别丢了这句"); }));
    EXPECT_EQ(program.state(), QProcess::Running);
    program.kill();
    EXPECT_EQ(finish(program).code, -2);

    const auto started = Json::decode<boost::json::value>(out.first(out.indexOf('\n')));
    ASSERT_TRUE(started);
    const auto id = QString::fromStdString(std::string(started->at("conversationId").as_string()));
    const auto listed = run({u"conversations"_s, u"list"_s});
    EXPECT_TRUE(listed.out.contains(id)) << listed.out.toStdString();
    const auto shown = run({u"conversations"_s, u"show"_s, id});
    EXPECT_EQ(shown.code, 0) << shown.err.toStdString();
    EXPECT_TRUE(shown.out.contains(u"你：别丢了这句（"_s)) << shown.out.toStdString();
}

} // namespace lmp
