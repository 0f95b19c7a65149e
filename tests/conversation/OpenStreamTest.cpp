#include "conversation/ConversationTexts.h"

#include "ChatFixture.h"

namespace lmp {

using namespace Qt::StringLiterals;
using State = ConversationDeliveryState;

/// A stream that sends one delta and then waits for the test.
class OpenStreamTest : public ChatFixture {
protected:
    OpenStreamTest() {
        session.begin();
        server.on(stream, [this](const auto &, QTcpSocket &socket) {
            held = &socket;
            socket.write("HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\nConnection: close\r\n\r\n" +
                         frames({delta("先")}));
            socket.flush();
        });
        const auto sent = chat->send(u"在吗"_s);
        reference = sent.value();
        EXPECT_TRUE(eventually([this] { return !deltas.empty(); }));
    }
    void finishStream() {
        if (held) {
            held->write(frames({R"({"delta":"后","safety":{"crisis":true}})", done}));
            held->disconnectFromHost();
        }
        settle();
        EXPECT_TRUE(eventually([this] { return !held; }));
        settle();
    }

    QPointer<QTcpSocket> held;
    ConversationMessageDelivery::Reference reference;
};

TEST_F(OpenStreamTest, ADeltaIsThereBeforeTheNext) {
    EXPECT_EQ(deltas, std::vector<QString>{u"先"_s});
    EXPECT_TRUE(chat->sending());
    EXPECT_EQ(chat->activeSend(), reference);
    EXPECT_EQ(message(0).deliveryState, State::pending);
    EXPECT_EQ(message(1).text, u"先"_s);
    // What was typed is on the disk while nothing is known of it.
    ASSERT_TRUE(eventually([this] { return draftFiles().size() == 1; }));

    EXPECT_EQ(chat->send(u"又"_s).error(), ConversationTexts::heldByReply());
    EXPECT_EQ(session.conversation()->messages.size(), 2);
    finishStream();
    EXPECT_TRUE(eventually([this] { return completed.size() == 1 && draftFiles().isEmpty(); }));
    EXPECT_EQ(message(1).text, u"先后"_s);
}

TEST_F(OpenStreamTest, StopKeepsTheTextAndLetsTheNextTurnGo) {
    chat->stop();
    ASSERT_EQ(failed.size(), 1u);
    EXPECT_TRUE(failed[0].stopped);
    EXPECT_EQ(failed[0].state, State::unknown);
    EXPECT_EQ(failed[0].text, u"先"_s);
    EXPECT_EQ(failed[0].reason, u"正在停止等待；已确认的结果会保留"_s);
    EXPECT_EQ(message(0).deliveryState, State::unknown);
    chat->stop();
    server.on(stream, StubServer::events(frames({delta("好"), done})));
    EXPECT_TRUE(chat->send(u"下一句"_s)) << "at once";
    finishStream();
    ASSERT_TRUE(eventually([this] { return completed.size() == 1; }));
    EXPECT_EQ(failed.size(), 1u);
    EXPECT_EQ(message(1).text, u"先"_s) << "what came late is not added";
    EXPECT_FALSE(safety.crisis());
}

TEST_F(OpenStreamTest, AnAbandonedTurnWritesNothing) {
    struct Case {
        const char *name;
        std::function<void()> leave;
    };
    server.on("/api/app/conversation?id=c9", StubServer::reply(200, conversation("c9", 4, "")));
    bool first = true;
    int abandoned = 0, cases = 0;
    QObject::connect(chat.get(), &ChatWithTwinView::turnAbandoned, [&] { ++abandoned; });
    for (const Case &c : std::initializer_list<Case>{
             {"another conversation",
              [this] {
                  session.begin();
              }},
             {"a stored conversation",
              [this] {
                  EXPECT_TRUE(await(session.load(u"c9"_s)));
              }},
             {"no conversation",
              [this] {
                  session.close();
              }},
             {"another account",
              [this] {
                  user = u"u2"_s;
              }},
             {"signed out",
              [this] {
                  user.reset();
              }},
             {"signed in anew",
              [this] {
                  signIn += u"+"_s;
              }},
             {"the message is gone",
              [this] {
                  session.edit([](ConversationDTO &c) { c.messages.removeFirst(); });
              }},
         }) {
        SCOPED_TRACE(c.name);
        if (!std::exchange(first, false)) {
            user = u"u1"_s;
            session.begin();
            deltas.clear();
            ASSERT_TRUE(chat->send(u"在吗"_s));
            ASSERT_TRUE(eventually([this] { return !deltas.empty(); }));
        }
        c.leave();
        const auto left = session.conversation() ? *session.conversation() : ConversationDTO();
        finishStream();
        ASSERT_TRUE(eventually([this] { return !chat->sending(); }));
        EXPECT_EQ(session.conversation() ? *session.conversation() : ConversationDTO(), left);
        EXPECT_EQ(deltas.size(), 1u);
        EXPECT_FALSE(safety.crisis());
        EXPECT_FALSE(chat->errorText());
        EXPECT_FALSE(chat->lastCharge());
        EXPECT_EQ(abandoned, ++cases);
    }
    EXPECT_TRUE(completed.empty() && failed.empty());
    EXPECT_TRUE(bodies("/app/conversation/sync").empty());
    EXPECT_TRUE(bodies("/relay/chat").empty());
}

TEST_F(OpenStreamTest, ASilentStreamIsLetGoOfWhenTheAccountChanges) {
    user.reset();
    chat->recheck();
    EXPECT_FALSE(chat->sending());
    EXPECT_TRUE(eventually([this] { return !held; })) << "the request ends with it";
    EXPECT_TRUE(completed.empty() && failed.empty());
}

TEST_F(OpenStreamTest, AViewMayEndInsideItsOwnSignals) {
    QObject::connect(chat.get(), &ChatWithTwinView::deltaReceived, [this] { chat.reset(); });
    finishStream();
    EXPECT_TRUE(eventually([this] { return !chat; }));
    EXPECT_TRUE(completed.empty() && failed.empty());
}

} // namespace lmp
