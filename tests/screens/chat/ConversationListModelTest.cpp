#include "screens/chat/ConversationListModel.h"
#include "screens/chat/ChatDateText.h"

#include "conversation/ConversationTexts.h"

#include "ChatModelFixture.h"

#include <QFile>
#include <QTimeZone>

namespace lmp {

using namespace Qt::StringLiterals;

class ConversationListModelTest : public ChatModelFixture {
protected:
    ConversationListModelTest() { serve({"a", "b", "c"}); }

    /// The service's list, latest first; the title of each is "关于" and its id.
    void serve(const QList<QByteArray> &ids) {
        QByteArray all;
        for (const QByteArray &id : ids)
            all += (all.isEmpty() ? "" : ",") + (R"({"id":")" + id + R"(","title":"关于)" + id + "\"}");
        server.on("/api/app/conversations", StubServer::reply(200, R"({"conversations":[)" + all + "]}"));
    }
    void refresh() {
        list.refresh();
        EXPECT_TRUE(eventually([this] { return !list.loading(); }));
    }
    QVariant shownIn(int row, const char *role) { return list.data(list.index(row), list.roleNames().key(role)); }
    /// Ids, with what stands out of each.
    QString rows() {
        QString all;
        for (int row = 0; row < list.rowCount(); ++row) {
            all += shownIn(row, "conversationId").toString();
            all += shownIn(row, "draft").toBool() ? u"!"_s : QString();
            all += shownIn(row, "selected").toBool() ? u"*"_s : QString();
        }
        return all;
    }

    ConversationListModel list{services()};
    QAbstractItemModelTester listTester{&list, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(ConversationListModelTest, ARefreshMovesRowsAndAFailedOneKeepsThem) {
    EXPECT_FALSE(list.empty()) << "not known yet";
    refresh();
    EXPECT_EQ(rows(), u"abc"_s);
    QSignalSpy reset(&list, &QAbstractItemModel::modelReset);
    list.select(u"c"_s);
    serve({"c", "d", "b"});
    refresh();
    EXPECT_EQ(rows(), u"c*db"_s);
    EXPECT_EQ(reset.size(), 0) << "a list that is scrolled stays where it is";
    EXPECT_EQ(list.neighbour(1), u"d"_s);
    EXPECT_EQ(list.neighbour(-1), QString());

    server.on("/api/app/conversations", StubServer::reply(500, R"({"reason":"稍后"})"));
    refresh();
    EXPECT_EQ(rows(), u"c*db"_s);
    EXPECT_EQ(list.errorText(), u"近期项目读取失败，请刷新重试。（稍后）"_s);
    serve({});
    refresh();
    EXPECT_EQ(list.errorText(), QString());
    EXPECT_TRUE(list.empty());
}

TEST_F(ConversationListModelTest, FindingByOneCharacter) {
    server.on("/api/app/conversations", StubServer::reply(200, R"({"conversations":[
        {"id":"a","title":"雨夜的咖啡"},{"id":"b","title":"Coffee"},{"id":"c","title":""}]})"));
    refresh();
    for (const auto &[wanted, found] : std::initializer_list<std::pair<QString, QString>>{{u"雨"_s, u"a"_s},
                                                                                          {u"咖啡"_s, u"a"_s},
                                                                                          {u" coffee "_s, u"b"_s},
                                                                                          {u"晴"_s, {}},
                                                                                          {u"e"_s, u"b"_s},
                                                                                          {{}, u"abc"_s}}) {
        list.find(wanted);
        EXPECT_EQ(rows(), found) << wanted.toStdString();
        EXPECT_EQ(list.noneFound(), found.isEmpty());
    }
    EXPECT_EQ(shownIn(2, "title"), u"新对话"_s);
}

TEST_F(ConversationListModelTest, WhatThisMachineAloneHolds) {
    list.follow(chat.get());
    refresh();
    load(u"a"_s);
    chat->setInput(u"没发"_s);
    EXPECT_EQ(rows(), u"a*bc"_s) << "what is being typed is no draft";
    load(u"b"_s);
    EXPECT_TRUE(eventually([this] { return rows() == u"a!b*c"_s; }));
    server.on(sync, StubServer::reply(500, "{}"));
    turn(u"在吗"_s);
    EXPECT_TRUE(eventually([this] { return rows() == u"a!b!*c"_s; }));

    // One that the service never had, while it streams and when it could not be saved.
    chat->begin();
    holdStream();
    chat->setInput(u"新的话"_s);
    ASSERT_TRUE(chat->send());
    EXPECT_EQ(list.rowCount(), 4);
    EXPECT_EQ(shownIn(0, "title"), u"新的话"_s);
    EXPECT_FALSE(shownIn(0, "draft").toBool());
    say({delta("好"), done});
    EXPECT_TRUE(eventually([this] { return shownIn(0, "draft").toBool(); }));
    load(u"c"_s);
    settle();
    refresh();
    EXPECT_EQ(list.rowCount(), 4);
    EXPECT_EQ(shownIn(0, "title"), u"新的话"_s);
    EXPECT_EQ(shownIn(0, "timeText"), u"刚刚"_s);
}

TEST_F(ConversationListModelTest, WhatIsAtTheServiceIsNotSaidToBeHereAlone) {
    serve({"a"});
    list.follow(chat.get());
    refresh();
    // Made elsewhere since, and opened by a link.
    load(u"b"_s);
    EXPECT_EQ(rows(), u"b*a"_s);
    EXPECT_EQ(shownIn(0, "subtitle"), QString());
    serve({"b", "a"});
    load(u"c"_s);
    EXPECT_TRUE(eventually([this] { return rows() == u"c*ba"_s; })) << "the list is read again";
    // One of its own is here alone until it was saved.
    server.on(sync, StubServer::reply(500, "{}"));
    chat->begin();
    turn(u"新的话"_s);
    EXPECT_TRUE(eventually([this] { return shownIn(0, "subtitle") == u"只在本机，尚未同步"_s; }));
    // A known one that could not be saved is not, whether the list can be read or not.
    load(u"b"_s);
    turn(u"在吗"_s);
    server.on("/api/app/conversations", StubServer::reply(500, "{}"));
    ConversationListModel offline(services());
    offline.refresh();
    EXPECT_TRUE(eventually([&] { return offline.rowCount() == 2; }));
    QHash<QString, QString> said;
    for (int row = 0; row < offline.rowCount(); ++row)
        said[offline.data(offline.index(row), ConversationListModel::ConversationIdRole).toString()] =
            offline.data(offline.index(row), ConversationListModel::SubtitleRole).toString();
    EXPECT_EQ(said.value(u"b"_s), QString());
    EXPECT_EQ(said.size(), 2);
}

TEST_F(ConversationListModelTest, WhatWasTypedForNoConversationHasARow) {
    list.follow(chat.get());
    // By another window, after this one has read what there was.
    ConversationInputDraftStore::Entry entry;
    entry.id = u"f"_s;
    entry.input.text = u"先写的"_s;
    ASSERT_TRUE(ConversationInputDraftStore(support).save(*user, entry, {}, clock.now()));
    clock.advance(std::chrono::seconds(1));
    chat->begin();
    chat->setInput(u"后写的"_s);
    settleFiles();
    clock.advance(std::chrono::seconds(1));
    load(u"c"_s);
    chat->setInput(u"给丙的"_s);
    load(u"a"_s);
    settleFiles();
    EXPECT_EQ(list.rowCount(), 1) << "only what is open, before the service has answered";
    serve({"a", "b"});
    server.on("/api/app/conversation?id=c", StubServer::reply(404, "{}"));
    refresh();
    ASSERT_EQ(list.rowCount(), 5);
    for (int row = 0; const QString &says :
                      {u"tc没发出：给丙的"_s, u"未发送的新对话没发出：后写的"_s, u"未发送的新对话没发出：先写的"_s}) {
        EXPECT_EQ(shownIn(row, "title").toString() + shownIn(row, "subtitle").toString(), says);
        ++row;
    }
    // As soon as it is left, also where the list has gone ahead.
    clock.advance(std::chrono::seconds(1));
    chat->begin();
    chat->setInput(u"再写的"_s);
    settleFiles();
    EXPECT_TRUE(eventually([this] { return list.rowCount() == 4; }))
        << "a fresh one takes along what was typed in the last";
    list.select(u"a"_s);
    load(u"a"_s);
    EXPECT_TRUE(eventually([this] { return list.rowCount() == 5; })) << list.rowCount();
    EXPECT_TRUE(eventually([this] { return shownIn(0, "subtitle") == u"没发出：再写的"_s; }));
    for (const QString &text : {u"先写的"_s, u"给丙的"_s, u"再写的"_s}) {
        const int row = list.rowCount() - 3;
        load(shownIn(row, "conversationId").toString());
        EXPECT_EQ(chat->title() + chat->input(), u"新对话"_s + text);
        EXPECT_EQ(chat->notice(), text == u"再写的"_s ? QString() : ConversationTexts::inputCarriedOver());
        chat->setInput({});
        settleFiles();
        EXPECT_TRUE(eventually([&] { return list.rowCount() == row + 2; })) << list.rowCount();
    }
}

TEST_F(ConversationListModelTest, WhatCannotBeReadIsToldAndStays) {
    const auto damage = [this](const QString &path) {
        QFile file(folder.filePath(path));
        ASSERT_TRUE(QDir(folder.path()).mkpath(QFileInfo(path).path()));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("{");
    };
    refresh();
    EXPECT_EQ(list.notice(), QString());
    damage(u"UnsentInput/v1/x.json"_s);
    refresh();
    EXPECT_EQ(list.notice(), u"有未发送输入暂时无法读取，原文件已保留。"_s);
    damage(u"ConversationDrafts/v1/x.json"_s);
    damage(u"ConversationDrafts/v1/y.json"_s);
    refresh();
    EXPECT_EQ(list.notice(), u"2 份本机草稿暂时无法读取，原文件已保留。\n有未发送输入暂时无法读取，原文件已保留。"_s);
    for (const QString &name : {u"UnsentInput"_s, u"ConversationDrafts"_s}) {
        ASSERT_TRUE(QDir(folder.path()).rename(name, name + u"-away"_s));
        damage(name);
    }
    refresh();
    EXPECT_EQ(list.notice(),
              u"本机草稿暂时无法读取，请稍后刷新；已保存的文件不会被删除。\n未发送输入暂时无法读取，请稍后刷新。"_s);
    EXPECT_EQ(rows(), u"abc"_s);
    EXPECT_TRUE(QFile::exists(folder.filePath(u"ConversationDrafts-away/v1/x.json"_s)));
}

TEST_F(ConversationListModelTest, AnotherAccountSeesNothingOfTheFirst) {
    QTcpSocket *asked = nullptr;
    refresh();
    server.on("/api/app/conversations", [&](const auto &, QTcpSocket &socket) { asked = &socket; });
    list.refresh();
    ASSERT_TRUE(eventually([&] { return asked; }));
    become(u"u2"_s);
    list.recheckAccount();
    EXPECT_EQ(list.rowCount(), 0);
    EXPECT_FALSE(list.loading());
    asked->write(StubServer::message(200, R"({"conversations":[{"id":"a","title":"x"}]})"));
    settle();
    serve({"z"});
    refresh();
    EXPECT_EQ(rows(), u"z"_s);
}

TEST(ChatDateTextTest, TimesAsAListTellsThem) {
    const QTimeZone zone(8 * 3600);
    const QDateTime now(QDate(2026, 3, 1), QTime(0, 30), zone);
    for (const auto &[then, text] : std::initializer_list<std::pair<QDateTime, QString>>{
             {now.addSecs(-59), u"刚刚"_s},
             {now.addSecs(-60), u"今天 00:29"_s},
             {now.addSecs(3600), u"今天 01:30"_s},
             {now.addSecs(-3600).toUTC(), u"昨天 23:30"_s},
             {now.addDays(-2), u"2月27日"_s},
             {QDateTime(QDate(2025, 12, 31), QTime(23, 59), zone), u"2025年12月31日"_s},
             {QDateTime(), QString()},
         })
        EXPECT_EQ(ChatDateText::of(then, now), text);
}

} // namespace lmp
