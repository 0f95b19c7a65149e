#include "conversation/ConversationTexts.h"
#include "conversation/TurnVerdict.h"

#include "ChatFixture.h"

namespace lmp {

using namespace Qt::StringLiterals;
using State = ConversationDeliveryState;

class ChatWithTwinViewTest : public ChatFixture {
protected:
    ChatWithTwinViewTest() { session.begin(); }
};

TEST_F(ChatWithTwinViewTest, HowAStreamEnds) {
    struct Case {
        const char *name;
        QByteArray bytes;
        State state;
        QString text;
        std::optional<QString> reason, notice;
        int skipped = 0;
    };
    const auto early = ConversationTexts::endedEarly();
    for (const Case &c : std::initializer_list<Case>{
             {"done", frames({delta("你"), delta("好"), done}), State::submitted, u"你好"_s, {}, {}},
             {"all in one frame", frames({R"({"delta":"你好","done":true})"}), State::submitted, u"你好"_s, {}, {}},
             {"no last blank line", frames({delta("a")}) + "data: " + done, State::submitted, u"a"_s, {}, {}},
             {"charged and empty",
              frames({delta(""), done}),
              State::submitted,
              {},
              {},
              ConversationTexts::chargedEmpty()},
             {"no done", frames({delta("你"), delta("好")}), State::unknown, u"你好"_s, early, {}},
             {"nothing at all", "", State::unknown, {}, early, {}},
             {"aborted",
              frames({delta("a"), R"({"error":"stream_aborted","done":true})", delta("b"), done}),
              State::unknown,
              u"a"_s,
              early,
              {}},
             {"another error", frames({R"({"error":"hiccup"})", delta("a"), done}), State::submitted, u"a"_s, {}, {}},
             {"garbage",
              frames({"[DONE]", delta("a"), R"({"delta":7})", R"({"delta":"lost","balance":"x"})", done}),
              State::submitted,
              u"a"_s,
              {},
              {},
              3},
             {"after done", frames({delta("a"), done, delta("b")}), State::submitted, u"a"_s, {}, {}},
             {"done is false", frames({R"({"delta":"a","done":false})"}), State::unknown, u"a"_s, early, {}},
         }) {
        SCOPED_TRACE(c.name);
        session.begin();
        completed.clear();
        failed.clear();
        records.clear();
        server.on(stream, StubServer::events(c.bytes, 7));
        const auto outcome = turn(u"在吗"_s);
        EXPECT_EQ(outcome.state, c.state);
        EXPECT_EQ(outcome.text, c.text);
        EXPECT_EQ(outcome.reason, c.reason);
        EXPECT_EQ(outcome.notice, c.notice);
        EXPECT_EQ(completed.size(), c.state == State::submitted ? 1u : 0u);
        EXPECT_FALSE(chat->sending() || chat->awaitingReply() || chat->activeSend());
        EXPECT_EQ(chat->errorText(), c.reason ? c.reason : c.notice);
        ASSERT_EQ(session.conversation()->messages.size(), c.text.isEmpty() ? 1 : 2);
        EXPECT_EQ(message(0).deliveryState, c.state);
        if (!c.text.isEmpty()) {
            EXPECT_EQ(message(1).text, c.text);
            EXPECT_EQ(message(1).role, TalkRole::twin);
            EXPECT_EQ(message(1).replyToUserMessageId, message(0).id);
            EXPECT_FALSE(message(1).deliveryState);
        }
        ASSERT_EQ(records.size(), c.skipped ? 1u : 0u);
        if (c.skipped) {
            EXPECT_EQ(records[0].event, u"stability.client.error"_s);
            EXPECT_EQ(records[0].props[u"count"_s], c.skipped);
            EXPECT_EQ(records[0].props[u"endpoint"_s], u"/relay/chat/stream"_s);
        }
        EXPECT_EQ(saves.back().where, ConversationSession::Saved::Where::Service);
        EXPECT_TRUE(eventually([this] { return draftFiles().isEmpty(); }));
    }
    EXPECT_TRUE(bodies("/relay/chat").empty());
    EXPECT_EQ(bodies("/relay/chat/stream").size(), 11u) << "nothing is sent twice";
}

TEST_F(ChatWithTwinViewTest, TheLastValueSeenIsKept) {
    server.on(stream,
              StubServer::events(frames({
                  R"({"usedMemories":[{"content":"a","truth":"fact"}],"pipCharged":1,"balance":9,"requestId":"x"})",
                  R"({"delta":"好","usedMemories":[{"content":"b","truth":"新的"}]})",
                  R"({"pipCharged":2,"done":true,"requestId":"y"})",
              })));
    const auto outcome = turn(u"在吗"_s);
    const QList<UsedMemory> last{{u"b"_s, u"新的"_s, {}}};
    EXPECT_EQ(message(1).used, last);
    EXPECT_EQ(message(1).requestId, u"y"_s);
    EXPECT_EQ(memories.size(), 2u);
    EXPECT_EQ(outcome.charged, 2);
    EXPECT_EQ(outcome.balance, 9);
    EXPECT_EQ(outcome.requestId, u"y"_s);
    EXPECT_EQ(chat->lastCharge(), 2);
    EXPECT_EQ(chat->balance(), 9);
    chat->openUsed(message(1).id);
    EXPECT_EQ(chat->showUsed(), last);

    // What an earlier turn cost says nothing of the next.
    server.on(stream, StubServer::events(frames({delta("a")})));
    EXPECT_FALSE(turn(u"嗯"_s).charged);
    EXPECT_FALSE(chat->lastCharge());
    session.begin();
    EXPECT_EQ(chat->balance(), 9) << "another conversation of the same account";
    user = u"u2"_s;
    session.begin();
    EXPECT_FALSE(chat->balance()) << "what one account holds says nothing of another's";
}

TEST_F(ChatWithTwinViewTest, AReplyIsOnDiskWhileItsSaveHangs) {
    server.on(stream, StubServer::events(frames({delta("好"), done})));
    QTcpSocket *open = nullptr;
    server.on("/api/app/conversation/sync", [&](const StubServer::Request &, QTcpSocket &socket) { open = &socket; });
    ASSERT_TRUE(chat->send(u"在吗"_s));
    ASSERT_TRUE(eventually([&] { return open != nullptr; }));
    EXPECT_TRUE(eventually([&] {
        const auto draft = drafts.read(user, session.conversation()->id);
        return draft && *draft && (*draft)->snapshot.messages == session.conversation()->messages &&
               (*draft)->snapshot.messages.size() == 2;
    })) << "a crash now would cost what was paid for";
    open->write(StubServer::message(200, R"({"ok":true,"revision":1})"));
    EXPECT_TRUE(eventually([&] { return !session.isSaving() && draftFiles().isEmpty(); }));
}

TEST_F(ChatWithTwinViewTest, SafetyNeverSpoilsAChargedAnswer) {
    server.on(
        stream,
        StubServer::events(frames({
            R"({"safety":{"crisis":"true"},"continuousUse":7})",
            R"({"delta":"a","safety":{"crisis":true,"guidance":1,"resources":[{"phone":"1"},{"label":"l","phone":"2"}]}})",
            R"({"delta":7,"continuousUse":{"minutes":90,"message":"歇会儿"}})",
            done,
        })));
    EXPECT_EQ(turn(u"在吗"_s).state, State::submitted);
    ASSERT_TRUE(safety.crisis());
    EXPECT_EQ(safety.crisis()->resources, (QList<CrisisResource>{{u"l"_s, u"2"_s}}));
    EXPECT_EQ(safety.continuousUse(), (ContinuousUseNotice{90, u"歇会儿"_s})) << "also out of a frame that is skipped";

    safety.closeCrisis();
    server.on(stream, StubServer::reply(404, "{}"));
    server.on(plain, [](const StubServer::Request &request, QTcpSocket &socket) {
        const bool streamed = request.path.endsWith("stream");
        socket.write(streamed ? StubServer::message(404, "{}")
                              : StubServer::message(200, R"({"text":"t","model":"m","pipCharged":1,"balance":2,
                                "safety":{"crisis":true,"resources":7},"continuousUse":"x"})"));
    });
    EXPECT_EQ(turn(u"在吗"_s).state, State::submitted);
    EXPECT_TRUE(safety.crisis());
}

TEST_F(ChatWithTwinViewTest, RefusedBrokenAndMissingRoutes) {
    const auto code = [](const char *name) {
        return QByteArray(R"({"error":")") + name + "\"}";
    };
    const QByteArray answer = R"({"text":"整段","model":"m","pipCharged":4,"balance":6,"requestId":"p1",
        "usedMemories":[{"content":"c","truth":"inf"}]})";
    const auto refusedText = ConversationTexts::refused();
    const auto offText = ConversationTexts::relayUnconfigured();
    struct Case {
        int streamStatus;
        QByteArray streamBody;
        int plainStatus; ///< 0: must not be asked
        QByteArray plainBody;
        State state;
        QString reason;
    };
    std::vector<Case> cases{
        {503, code("relay_unconfigured"), 0, {}, State::failed, offText},
        {404, code("relay_unconfigured"), 0, {}, State::failed, offText},
        {500, {}, 0, {}, State::unknown, ConversationTexts::interrupted()},
        {503, code("busy"), 0, {}, State::unknown, ConversationTexts::interrupted()},
        {404, "<html>", 200, answer, State::submitted, {}},
        {405, {}, 200, answer, State::submitted, {}},
        {501, code("x"), 200, answer, State::submitted, {}},
        {404, {}, 503, code("relay_unconfigured"), State::failed, offText},
        {404, {}, 404, {}, State::unknown, ConversationTexts::plainUnconfirmed()},
        {404, {}, 500, code("x"), State::unknown, ConversationTexts::plainUnconfirmed()},
        {404, {}, 200, R"({"text":"没有账"})", State::unknown, ConversationTexts::plainUnconfirmed()},
        {404, {}, -1, {}, State::unknown, ConversationTexts::plainUnconfirmed()},
        {404, {}, 200, R"({"text":"","model":"m","pipCharged":4,"balance":6})", State::submitted, {}},
    };
    for (const int status : {401, 402, 403, 409, 429}) {
        cases.push_back({status, code("no"), 0, {}, State::failed, refusedText});
        cases.push_back({404, {}, status, code("no"), State::failed, refusedText});
    }
    for (const Case &c : cases) {
        SCOPED_TRACE(
            (QByteArray::number(c.streamStatus) + " " + QByteArray::number(c.plainStatus) + c.plainBody).constData());
        session.begin();
        completed.clear();
        failed.clear();
        deltas.clear();
        server.requests.clear();
        server.on(stream, StubServer::reply(c.streamStatus, c.streamBody));
        server.on(plain, [&](const StubServer::Request &request, QTcpSocket &socket) {
            if (request.path == stream)
                socket.write(StubServer::message(c.streamStatus, c.streamBody));
            else if (c.plainStatus < 0)
                socket.abort();
            else
                socket.write(StubServer::message(c.plainStatus, c.plainBody));
        });
        const auto outcome = turn(u"在吗"_s);
        EXPECT_EQ(outcome.state, c.state);
        EXPECT_EQ(outcome.reason.value_or(QString()), c.reason);
        EXPECT_EQ(message(0).deliveryState, c.state);
        EXPECT_EQ(message(0).text, u"在吗"_s);
        EXPECT_EQ(bodies("/relay/chat/stream").size(), 1u);
        EXPECT_EQ(bodies("/relay/chat").size(), c.plainStatus ? 1u : 0u);
        if (c.state == State::submitted && !outcome.notice) {
            EXPECT_EQ(deltas, std::vector<QString>{u"整段"_s});
            EXPECT_EQ(message(1).text, u"整段"_s);
            EXPECT_EQ(message(1).requestId, u"p1"_s);
            EXPECT_EQ(message(1).used->size(), 1);
            EXPECT_EQ(outcome.charged, 4);
            EXPECT_EQ(chat->balance(), 6);
        }
        if (outcome.notice)
            EXPECT_EQ(session.conversation()->messages.size(), 1);
    }
}

TEST_F(ChatWithTwinViewTest, ABrokenConnectionKeepsWhatCame) {
    server.on(stream, [](const auto &, QTcpSocket &socket) {
        socket.write("HTTP/1.1 200 OK\r\nContent-Length: 5000\r\n\r\n" + frames({delta("一半")}));
        socket.disconnectFromHost();
    });
    const auto outcome = turn(u"在吗"_s);
    EXPECT_EQ(outcome.state, State::unknown);
    EXPECT_EQ(outcome.reason, ConversationTexts::interrupted());
    EXPECT_EQ(message(1).text, u"一半"_s);
}

TEST(TurnVerdictTest, TextThatArrivedRulesTheFallbackOut) {
    for (const int status : {404, 405, 501}) {
        const auto error = APIError::fromAnswer(status, {});
        EXPECT_EQ(TurnVerdict::ofStream(error, false).kind, TurnVerdict::Kind::Unavailable);
        EXPECT_EQ(TurnVerdict::ofStream(error, true),
                  (TurnVerdict{TurnVerdict::Kind::Unconfirmed, ConversationTexts::interrupted()}));
        EXPECT_EQ(TurnVerdict::ofPlain(error).kind, TurnVerdict::Kind::Unconfirmed);
    }
    EXPECT_EQ(TurnVerdict::ofStream(APIError::fromAnswer(402, {}), true).kind, TurnVerdict::Kind::Refused);
}

TEST_F(ChatWithTwinViewTest, WhatIsAsked) {
    chat->companion = u"狐"_s;
    session.begin(u"夜聊"_s);
    session.edit([](ConversationDTO &conversation) {
        const auto say = [&](const QString &id, TalkRole role, std::optional<State> state) {
            ConvMessageDTO message;
            message.id = id;
            message.role = role;
            message.text = id;
            message.deliveryState = state;
            conversation.messages.push_back(message);
        };
        say(u"u1"_s, TalkRole::user, State::submitted);
        say(u"t1"_s, TalkRole::twin, {});
        say(u"u2"_s, TalkRole::user, State::unknown);
        say(u"u3"_s, TalkRole::user, State::failed);
        say(u"u4"_s, TalkRole::user, State::pending);
        say(u"t2"_s, TalkRole::twin, {});
    });
    server.on(plain, [](const StubServer::Request &request, QTcpSocket &socket) {
        socket.write(StubServer::message(request.path == stream ? 404 : 500, {}));
    });
    chat->cheaperMode = true;
    turn(u"问"_s);
    const QByteArray turns = R"("messages":[{"role":"user","content":"u1"},{"role":"assistant","content":"t1"},)"
                             R"({"role":"assistant","content":"t2"},{"role":"user","content":"问"}])";
    EXPECT_EQ(bodies("/relay/chat/stream").at(0),
              "{" + turns +
                  R"(,"maxTokens":300,"companion":"狐","incognito":false,"mode":"夜聊","surface":"terminal"})");
    EXPECT_EQ(bodies("/relay/chat").at(0),
              "{" + turns + R"(,"maxTokens":300,"companion":"狐","incognito":false,"mode":"夜聊"})");

    chat->cheaperMode = false;
    chat->companion.reset();
    session.begin({}, true);
    turn(u"问"_s);
    EXPECT_EQ(bodies("/relay/chat/stream").at(1), R"({"messages":[{"role":"user","content":"问"}],)"
                                                  R"("maxTokens":800,"incognito":true,"surface":"terminal"})");
}

TEST_F(ChatWithTwinViewTest, StopWhileThePlainRouteAnswers) {
    bool asked = false;
    server.on(plain, [&](const StubServer::Request &request, QTcpSocket &socket) {
        if (request.path == stream)
            socket.write(StubServer::message(404, {}));
        else
            asked = true;
    });
    ASSERT_TRUE(chat->send(u"在吗"_s));
    ASSERT_TRUE(eventually([&] { return asked; }));
    chat->stop();
    EXPECT_EQ(failed.at(0).state, State::unknown);
    EXPECT_EQ(failed.at(0).reason, ConversationTexts::stopped());
    settle();
    EXPECT_EQ(failed.size(), 1u);
}

TEST_F(ChatWithTwinViewTest, HeldBackInputStaysInItsBox) {
    using Scope = ConversationSendScope;
    const auto held = ConversationTexts::heldByReply(), creating = ConversationTexts::heldByCreation();
    struct Case {
        bool call, creation;
        Scope scope;
        std::optional<QString> why;
    };
    for (const auto &[call, creation, scope, why] : std::initializer_list<Case>{
             {true, true, Scope::discussion, held},
             {true, false, Scope::modify, held},
             {false, true, Scope::modify, creating},
             {false, true, Scope::related, creating},
         }) {
        chat->elsewhere = {call, creation};
        EXPECT_EQ(chat->send(u"x"_s, scope).error(), why);
    }
    chat->elsewhere = {};
    EXPECT_FALSE(chat->send(u" \n"_s));
    user = u"u2"_s;
    EXPECT_EQ(chat->send(u"x"_s).error(), ConversationTexts::accountChanged());
    session.close();
    EXPECT_FALSE(chat->send(u"x"_s));
    settle();
    EXPECT_TRUE(server.requests.empty());

    session.begin();
    chat->elsewhere = {false, true};
    EXPECT_TRUE(chat->send(u"x"_s)) << "talk goes on while a work is made";
}

TEST_F(ChatWithTwinViewTest, Feedback) {
    server.on(stream, StubServer::events(frames({delta("好"), done})));
    turn(u"在吗"_s);
    const QString reply = message(1).id;
    server.on("/api/app/feedback", StubServer::reply(200, "{}"));
    chat->likeReply(reply);
    chat->openReasons(reply);
    EXPECT_EQ(chat->reasonsOpenFor(), reply);
    chat->dislikeReply(reply, u"made_up"_s);
    chat->dislikeReply(reply, u"too_long"_s);
    EXPECT_FALSE(chat->reasonsOpenFor());
    chat->likeReply(message(0).id);
    ASSERT_TRUE(eventually([&] { return bodies("/app/feedback").size() == 2; }));
    const QByteArray where = R"("conversationId":")" + session.conversation()->id.toUtf8() + R"(","messageId":")" +
                             reply.toUtf8() + R"(","requestId":"r1"})";
    std::vector<QByteArray> sent = bodies("/app/feedback");
    std::ranges::sort(sent);
    EXPECT_EQ(sent[0], R"({"polarity":"negative","reason":"too_long",)" + where);
    EXPECT_EQ(sent[1], R"({"polarity":"positive",)" + where);
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].event, u"talk.feedback.up"_s);
    EXPECT_EQ(records[1].event, u"talk.feedback.down"_s);
    EXPECT_EQ(records[1].subjectId, session.conversation()->id);

    server.on("/api/app/feedback", StubServer::reply(500, "{}"));
    chat->likeReply(reply);
    EXPECT_TRUE(eventually([&] { return chat->feedback().isEmpty(); })) << "a choice that did not arrive is not shown";
}

} // namespace lmp
