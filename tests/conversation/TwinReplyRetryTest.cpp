#include "conversation/ConversationTexts.h"

#include "ChatFixture.h"

namespace lmp {

using namespace Qt::StringLiterals;
using State = ConversationDeliveryState;

class TwinReplyRetryTest : public ChatFixture {
protected:
    TwinReplyRetryTest() {
        QObject::connect(chat.get(), &ChatWithTwinView::retryEnded,
                         [this](const RetryOutcome &outcome) { ended.push_back(outcome); });
        server.on("/api/app/conversation/retry", [this](const auto &, QTcpSocket &socket) { held = &socket; });
        open();
    }
    void open() {
        const QByteArray messages = R"({"id":"u1","role":"user","text":"问","deliveryState":"submitted"},
            {"id":"t1","role":"twin","text":"旧"},{"id":"u2","role":"user","text":"二","deliveryState":"failed"},
            {"id":"u3","role":"user","text":"三","deliveryState":"unknown"},{"id":"t3","role":"twin","text":"半"})";
        server.on("/api/app/conversation?id=c", StubServer::reply(200, conversation("c", 1, messages)));
        ASSERT_TRUE(await(session.load(u"c"_s, ConversationSession::Copy::Service)));
    }
    void ask() {
        held = nullptr;
        ended.clear();
        EXPECT_EQ(chat->retryReply(u"t1"_s), std::nullopt);
        EXPECT_TRUE(eventually([this] { return !held.isNull(); }));
    }
    void answer(int status = 200, const QByteArray &body = R"({"messageId":"n1","text":"新","free":true})") {
        held->write(StubServer::message(status, body));
        EXPECT_TRUE(eventually([this] { return !chat->retry().isRunning(); }));
        settle();
    }

    QPointer<QTcpSocket> held;
    std::vector<RetryOutcome> ended;
};

TEST_F(TwinReplyRetryTest, TheAnswerIsAddedOnceAndSaved) {
    ask();
    EXPECT_EQ(chat->retryReply(u"t1"_s), ConversationTexts::heldByReply()) << "one at a time";
    EXPECT_EQ(chat->send(u"x"_s).error(), ConversationTexts::heldByReply());
    EXPECT_EQ(chat->retry().state().active->sourceTwinId, u"t1"_s);
    answer();
    EXPECT_EQ(bodies("/app/conversation/retry").at(0), R"({"conversationId":"c","userMessageId":"u1"})");
    ASSERT_EQ(ended.size(), 1u);
    EXPECT_EQ(ended[0].messageId, u"n1"_s);
    EXPECT_TRUE(ended[0].text.isNull());
    EXPECT_TRUE(ended[0].free);
    ASSERT_EQ(session.conversation()->messages.size(), 6);
    EXPECT_EQ(message(1).text, u"旧"_s);
    EXPECT_EQ(message(5).text, u"新"_s);
    EXPECT_EQ(message(5).replyToUserMessageId, u"u1"_s);
    ASSERT_TRUE(eventually([this] { return saves.size() == 1; }));

    ask();
    answer();
    EXPECT_EQ(session.conversation()->messages.size(), 6);
}

TEST_F(TwinReplyRetryTest, AFailedMessageIsAnsweredAsEdited) {
    EXPECT_EQ(chat->retryMessage(u"u2"_s, u"二改"_s), std::nullopt);
    ASSERT_TRUE(eventually([this] { return !held.isNull(); }));
    EXPECT_EQ(bodies("/app/conversation/retry").at(0),
              R"({"conversationId":"c","userMessageId":"u2","editedInput":"二改"})");
    answer();
    EXPECT_EQ(message(2).text, u"二改"_s);
    EXPECT_EQ(message(2).deliveryState, State::submitted);
}

TEST_F(TwinReplyRetryTest, WhatMayHaveBeenChargedIsNotAskedAgain) {
    EXPECT_EQ(chat->retryMessage(u"u3"_s), ConversationTexts::unknownMessage());
    EXPECT_EQ(chat->retryReply(u"t3"_s), ConversationTexts::unknownMessage());
    const auto stale = ConversationMessageDelivery::reason(ConversationMessageDelivery::Failure::staleRetry);
    EXPECT_EQ(chat->retryMessage(u"t1"_s), stale);
    EXPECT_EQ(chat->retryReply(u"nobody"_s), stale);
    session.edit([](ConversationDTO &c) { c.title = u"x"_s; });
    EXPECT_EQ(chat->retryReply(u"t1"_s), u"请先保存这段对话，再重新回答。"_s);
    EXPECT_TRUE(bodies("/app/conversation/retry").empty());
}

TEST_F(TwinReplyRetryTest, WhatChangedMeanwhileIsLeftAsItIs) {
    const auto edit = [this](std::function<void(ConversationDTO &)> change) {
        return [this, change] {
            session.edit(change);
        };
    };
    struct Case {
        const char *name;
        std::function<void()> meanwhile;
        int status;
        QByteArray body;
        QString text;
    };
    const QByteArray good = R"({"messageId":"n1","text":"新"})";
    for (const Case &c : std::initializer_list<Case>{
             {"failed", [] {}, 500, "{}", ConversationTexts::retryUnconfirmed()},
             {"undecodable", [] {}, 200, "{}", ConversationTexts::retryUnconfirmed()},
             {"no id", [] {}, 200, R"({"messageId":" ","text":"新"})", ConversationTexts::retryWithoutMessageId()},
             {"taken id", [] {}, 200, R"({"messageId":"t1","text":"新"})", ConversationTexts::retryMismatch()},
             {"target edited", edit([](ConversationDTO &d) { d.messages[0].text = u"改"_s; }), 200, good,
              ConversationTexts::retryStale()},
             {"target gone", edit([](ConversationDTO &d) { d.messages.removeFirst(); }), 200, good,
              ConversationTexts::retryStale()},
             {"new content", edit([](ConversationDTO &d) { d.messages.push_back(d.messages[0]); }), 200, good,
              ConversationTexts::retryConversationChanged()},
             {"new works", edit([](ConversationDTO &d) { d.workspace.emplace(); }), 200, good,
              ConversationTexts::retryWorkspaceChanged()},
             {"another sign-in", [this] { signIn += u'+'; }, 200, good, ConversationTexts::retryUnmatched()},
         }) {
        SCOPED_TRACE(c.name);
        open();
        ask();
        c.meanwhile();
        const auto before = *session.conversation();
        answer(c.status, c.body);
        ASSERT_EQ(ended.size(), 1u);
        EXPECT_EQ(ended[0].text, c.text);
        EXPECT_TRUE(ended[0].unconfirmed);
        EXPECT_EQ(*session.conversation(), before);
    }
}

TEST_F(TwinReplyRetryTest, AnotherConversationNeverSeesTheAnswer) {
    ask();
    session.begin();
    EXPECT_FALSE(chat->retry().isRunning());
    answer();
    EXPECT_TRUE(ended.empty());
    EXPECT_TRUE(session.conversation()->messages.isEmpty());
}

} // namespace lmp
