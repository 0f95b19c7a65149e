#include "screens/chat/ConversationSearchModel.h"

#include "support/FakeAudio.h"

#include "ChatModelFixture.h"

#include <QAbstractItemModelTester>
#include <QThreadPool>

namespace lmp {

using namespace Qt::StringLiterals;

class ChatFindTest : public ChatModelFixture {
protected:
    /// A conversation of `count` messages; every third says "茶".
    static QByteArray long_(const QByteArray &id, int count) {
        QByteArrayList messages;
        for (int i = 0; i < count; ++i)
            messages << R"({"id":"m)" + QByteArray::number(i) + R"(","role":")" + (i % 2 ? "twin" : "user") +
                            R"(","text":")" + (i % 3 ? "水" : "喝茶 **好**。") + QByteArray::number(i) + "\"}";
        return R"({"conversation":{"id":")" + id + R"(","title":"t","revision":1,"messages":[)" + messages.join(',') +
               "]}}";
    }
};

TEST_F(ChatFindTest, FromMatchToMatchInALongConversation) {
    server.on("/api/app/conversation?id=c", StubServer::reply(200, long_("c", 300)));
    chat->load(u"c"_s);
    ASSERT_TRUE(eventually([&] { return chat->messages()->total() == 300; }));
    QStringList gone;
    auto *find = chat->find();
    QObject::connect(find, &ChatFind::goTo, find, [&](const QString &id) { gone << id; });
    find->begin();
    find->setText(u"茶"_s);
    EXPECT_EQ(find->count(), 100);
    EXPECT_EQ(find->currentId(), u"m297"_s) << "the latest first";
    EXPECT_EQ(find->statusText(), u"第 100 条，共 100 条"_s);
    find->next();
    EXPECT_EQ(find->currentId(), u"m0"_s) << "round again";
    EXPECT_EQ(gone, (QStringList{u"m297"_s, u"m0"_s}));
    const QAbstractItemModelTester tester(chat->messages());
    EXPECT_LT(chat->messages()->rowOf(u"m0"_s), 0);
    const int row = chat->messages()->bringIn(u"m0"_s);
    EXPECT_EQ(row, 0);
    EXPECT_TRUE(chat->messages()->atStart());
    EXPECT_GE(chat->messages()->bringIn(u"m150"_s), 0);
    EXPECT_FALSE(chat->messages()->atStart() || chat->messages()->atEnd());
    EXPECT_EQ(chat->messages()->bringIn(u"nobody"_s), -1);
    find->setText(u"鑫"_s);
    EXPECT_EQ(find->statusText(), u"没有找到"_s);
    find->next();
    EXPECT_EQ(find->currentId(), QString());
    chat->begin(true);
    EXPECT_FALSE(find->isOpen()) << "another conversation, another question";
    EXPECT_EQ(find->text(), QString());
}

TEST_F(ChatFindTest, ReadingAloudEndsWithTheConversation) {
    EXPECT_EQ(SpeechModel::spokenText(u"# 标题\n\n第一句。\n\n- **重点** `x`\n\n<b>"_s),
              u"标题\n第一句。重点 x\n<b>"_s);
    QPointer<QTcpSocket> held;
    QByteArray asked;
    server.on("/api/tts", [&](const StubServer::Request &request, QTcpSocket &socket) {
        asked = request.body;
        held = &socket;
    });
    server.on("/api/app/conversation?id=c", StubServer::reply(200, long_("c", 4)));
    chat->load(u"c"_s);
    ASSERT_TRUE(eventually([&] { return chat->messages()->total() == 4; }));
    auto *speech = chat->speech();
    speech->toggle(u"m3"_s);
    EXPECT_EQ(speech->messageId(), u"m3"_s);
    EXPECT_EQ(speech->subtitle(), u"喝茶 好。"_s);
    ASSERT_TRUE(eventually([&] { return held; }));
    EXPECT_EQ(Json::decode<TTSPlayer::TtsBody>(asked)->text, u"喝茶 好。"_s);
    speech->toggle(u"m3"_s);
    EXPECT_FALSE(speech->shown());
    server.on("/api/tts", StubServer::reply(503, "{}"));
    speech->toggle(u"m3"_s);
    ASSERT_TRUE(eventually([&] { return !speech->note().isEmpty(); }));
    EXPECT_EQ(speech->subtitle(), u"喝茶 好。"_s);
    chat->begin();
    EXPECT_FALSE(speech->shown());
    speech->toggle(u"nobody"_s);
    EXPECT_FALSE(speech->shown());
}

TEST_F(ChatFindTest, OfAVeryLongReplyTheBeginningIsRead) {
    // The place of the cut falls into a character of several units.
    QByteArray text = QString(u"字"_s.repeated(SpeechModel::mostSpoken - 1) + u"👨‍👩‍👧尾"_s).toUtf8();
    server.on("/api/app/conversation?id=c",
              StubServer::reply(200, conversation("c", R"({"id":"m0","role":"twin","text":")" + text +
                                                           R"("},{"id":"m1","role":"twin","text":"短的。"})")));
    EXPECT_EQ(SpeechModel::spokenText(QString::fromUtf8(text)), u"字"_s.repeated(SpeechModel::mostSpoken - 1));
    QByteArray asked;
    server.on("/api/tts", [&](const StubServer::Request &request, QTcpSocket &) { asked = request.body; });
    chat->load(u"c"_s);
    ASSERT_TRUE(eventually([&] { return chat->messages()->total() == 2; }));
    auto *speech = chat->speech();
    speech->toggle(u"m0"_s);
    EXPECT_EQ(speech->messageId(), u"m0"_s);
    EXPECT_EQ(speech->note(), u"这段话太长，只朗读前一部分。"_s);
    ASSERT_TRUE(eventually([&] { return !asked.isEmpty(); }));
    EXPECT_EQ(speech->subtitle(), u"字"_s.repeated(500));
    speech->stop();
    // What was wished meanwhile is what is read.
    asked.clear();
    speech->toggle(u"m0"_s);
    speech->toggle(u"m1"_s);
    EXPECT_EQ(speech->subtitle(), u"短的。"_s);
    speech->toggle(u"m0"_s);
    speech->toggle(u"m0"_s);
    EXPECT_FALSE(speech->shown());
    QThreadPool::globalInstance()->waitForDone();
    ::lmp::settle();
    EXPECT_FALSE(speech->shown());
}

} // namespace lmp
