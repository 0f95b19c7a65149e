#include "conversation/ConversationTexts.h"
#include "core/PlainLabel.h"

#include "ChatModelFixture.h"

namespace lmp {

using namespace Qt::StringLiterals;
using State = MessageListModel::State;

class ChatModelTest : public ChatModelFixture {};

TEST_F(ChatModelTest, EachEndOfATurnIsToldAtItsMessage) {
    const auto refusal = [](int status, QByteArray body = "{}") {
        return StubServer::reply(status, std::move(body));
    };
    const auto broken = [](const auto &, QTcpSocket &socket) {
        socket.write("HTTP/1.1 200 OK\r\nContent-Length: 5000\r\n\r\n" + frames({delta("一半")}));
        socket.disconnectFromHost();
    };
    struct Case {
        const char *name;
        StubServer::Handler handler;
        State state;
        QString stateText;
        int rows;
        QString error;  ///< in the last row
        QString charge; ///< in the last row
    };
    const auto unknown = ConversationTexts::unknownMessage();
    for (const Case &c : std::initializer_list<Case>{
             {"done", StubServer::events(frames({delta("好"), done})), State::Delivered, {}, 2, {}, u"3 Pip"_s},
             {"empty",
              StubServer::events(frames({done})),
              State::Delivered,
              {},
              1,
              ConversationTexts::chargedEmpty(),
              u"3 Pip"_s},
             {"no done", StubServer::events(frames({delta("好")})), State::Unknown, unknown, 2,
              ConversationTexts::endedEarly(), u"—"_s},
             {"nothing", StubServer::events({}), State::Unknown, unknown, 1, ConversationTexts::endedEarly(), u"—"_s},
             {"broken", broken, State::Unknown, unknown, 2, ConversationTexts::interrupted(), u"—"_s},
             {"refused", refusal(402), State::Failed, u"未送达"_s, 1, ConversationTexts::refused(), {}},
             {"off",
              refusal(503, R"({"error":"relay_unconfigured"})"),
              State::Failed,
              u"未送达"_s,
              1,
              ConversationTexts::relayUnconfigured(),
              {}},
             {"no route at all", refusal(404), State::Unknown, unknown, 1, ConversationTexts::plainUnconfirmed(),
              u"—"_s},
         }) {
        SCOPED_TRACE(c.name);
        chat->begin(true);
        chat->begin(false);
        server.on(stream, c.handler);
        turn(u"在吗"_s);
        ASSERT_EQ(chat->messages()->rowCount(), c.rows);
        EXPECT_EQ(state(0), c.state);
        EXPECT_EQ(text(0, "stateText"), c.stateText);
        EXPECT_EQ(text(-1, "errorText"), c.error);
        EXPECT_EQ(text(-1, "chargeText"), c.charge);
        EXPECT_EQ(chat->errorText(), c.error) << "also under the input";
        EXPECT_EQ(text(0, "retryText"), c.state == State::Failed ? ConversationTexts::failedMessage() : QString());
        if (c.rows == 2) {
            EXPECT_EQ(shown(1, "retryOffered").toBool(), c.state == State::Delivered)
                << "no other answer while it is open whether the first was charged";
            EXPECT_FALSE(shown(1, "streaming").toBool());
            EXPECT_TRUE(text(0, "errorText").isEmpty());
        }
        EXPECT_TRUE(chat->input().isEmpty());
        EXPECT_TRUE(chat->isIdle());
    }
    EXPECT_EQ(chat->balanceText(), u"97 Pip"_s);
    EXPECT_EQ(chat->lastChargeText(), u"—"_s) << "the last turn's";
}

TEST_F(ChatModelTest, StoppingKeepsWhatCameAndTheNextCanBeSentAtOnce) {
    chat->begin();
    holdStream();
    chat->setInput(u"在吗"_s);
    ASSERT_TRUE(chat->send());
    EXPECT_EQ(text(0, "stateText"), ConversationTexts::awaitingReply());
    say({delta("一"), delta("半")});
    ASSERT_TRUE(eventually([this] { return chat->messages()->rowCount() == 2; }));
    EXPECT_EQ(text(0, "stateText"), ConversationTexts::replyArriving());
    EXPECT_TRUE(shown(1, "streaming").toBool());

    chat->setInput(u"还有"_s);
    EXPECT_FALSE(chat->send());
    EXPECT_EQ(chat->inputHeldReason(), ConversationTexts::heldByReply());
    EXPECT_EQ(chat->input(), u"还有"_s);

    ASSERT_TRUE(eventually([this] { return text(1) == u"一半"_s; }));
    chat->stop();
    EXPECT_EQ(chat->inputHeldReason(), QString()) << "nothing holds it back any more";
    EXPECT_EQ(state(1), State::Stopped);
    EXPECT_EQ(text(1), u"一半"_s);
    EXPECT_EQ(state(0), State::Unknown);
    EXPECT_EQ(chat->errorText(), ConversationTexts::stopped());
    clock.advance(std::chrono::seconds(10));
    EXPECT_TRUE(eventually([this] { return chat->errorText().isEmpty(); })) << "the reply says it from here on";
    answer({delta("好"), done});
    ASSERT_TRUE(chat->send());
    EXPECT_TRUE(chat->inputHeldReason().isEmpty());
    EXPECT_TRUE(eventually([this] { return chat->isIdle(); }));
    EXPECT_EQ(chat->messages()->rowCount(), 4);
}

TEST_F(ChatModelTest, AReplyThatIsLeftIsStoppedAndKept) {
    int saves = 0;
    server.on(sync, [&saves](const auto &request, QTcpSocket &socket) {
        saves += request.body.contains("一半");
        StubServer::reply(200, R"({"ok":true,"revision":2})")(request, socket);
    });
    load(u"a"_s);
    for (const bool fresh : {true, false}) {
        held = nullptr;
        holdStream();
        chat->setInput(u"在吗"_s);
        ASSERT_TRUE(chat->send());
        say({delta("一"), delta("半")});
        ASSERT_TRUE(eventually([this] { return text(-1) == u"一半"_s; }));
        fresh ? chat->begin() : chat->load(u"b"_s);
        EXPECT_TRUE(chat->isIdle());
        EXPECT_TRUE(eventually([&] { return saves > 0; })) << "the service is told what became of it";
        EXPECT_TRUE(eventually([this] { return !held; })) << "and sends no more";
        settleFiles();
        // The service may have it or not; this machine does.
        load(u"a"_s);
        EXPECT_EQ(text(-1), u"一半"_s);
        EXPECT_EQ(text(-2, "stateText"), ConversationTexts::unknownMessage());
        saves = 0;
    }
}

TEST_F(ChatModelTest, WhatOthersSayNeitherActsNorFillsTheWindow) {
    QByteArray memories;
    for (int at = 0; at < 500; ++at)
        memories +=
            (at ? "," : "") + QByteArray(R"({"content":")") + QByteArray(10'000, 'm') + R"(","truth":"\u202ex"})";
    server.on(
        "/api/app/conversation?id=a",
        StubServer::reply(200, R"({"conversation":{"id":"a","title":"账\u202e单\n\u0007","revision":1,"messages":[)" +
                                   message("q") + R"(,{"id":"r","role":"twin","text":"好\u202e","used":[)" + memories +
                                   "]}]}}"));
    load(u"a"_s);
    EXPECT_EQ(chat->title(), u"账单"_s);
    EXPECT_EQ(text(-1), u"好\u202e"_s) << "the text of a message is its own";
    chat->deeds()->openUsed(u"r"_s);
    const auto *used = chat->deeds()->usedMemories();
    EXPECT_EQ(used->rowCount(), 100);
    EXPECT_TRUE(used->note().contains(u"500"_s) && used->note().contains(u"100"_s));
    EXPECT_EQ(used->data(used->index(0), UsedMemoryModel::ContentRole).toString().size(), PlainLabel::longestContent);
    EXPECT_EQ(used->data(used->index(0), UsedMemoryModel::TruthTextRole), u"x"_s);
}

TEST_F(ChatModelTest, QuittingIsHeldUpByADiskThatRefuses) {
    ASSERT_TRUE(QDir(folder.filePath(u"UnsentInput"_s)).removeRecursively());
    ASSERT_TRUE(QFile(folder.filePath(u"UnsentInput"_s)).open(QIODevice::WriteOnly));
    ASSERT_TRUE(QFile(folder.filePath(u"ConversationDrafts"_s)).open(QIODevice::WriteOnly));
    load(u"a"_s);
    EXPECT_TRUE(await(chat->preserve())) << "nothing to lose";
    chat->setInput(u"没发出"_s);
    EXPECT_FALSE(await(chat->preserve()));
    EXPECT_FALSE(chat->localInputSaved());
    chat->setInput({});
    holdStream();
    chat->setInput(u"在吗"_s);
    ASSERT_TRUE(chat->send());
    EXPECT_FALSE(await(chat->preserve())) << "a turn under way";
    ASSERT_TRUE(QFile::remove(folder.filePath(u"UnsentInput"_s)));
    ASSERT_TRUE(QFile::remove(folder.filePath(u"ConversationDrafts"_s)));
    EXPECT_TRUE(await(chat->preserve()));
    EXPECT_TRUE(chat->sending()) << "the person may yet stay";
}

TEST_F(ChatModelTest, SwitchingInMidStreamWritesNothingIntoEither) {
    load(u"a"_s);
    holdStream();
    chat->setInput(u"在吗"_s);
    ASSERT_TRUE(chat->send());
    say({delta("一半")});
    ASSERT_TRUE(eventually([this] { return chat->messages()->rowCount() == 3; }));
    load(u"b"_s);
    EXPECT_TRUE(chat->isIdle());
    if (held)
        held->write(frames({delta("后"), done}));
    settle();
    EXPECT_EQ(chat->messages()->rowCount(), 1);
    EXPECT_EQ(text(0), u"b1"_s);
    EXPECT_EQ(chat->errorText(), QString());

    // What this machine kept of it, with an outcome that can no longer be learned.
    load(u"a"_s);
    ASSERT_EQ(chat->messages()->rowCount(), 3);
    EXPECT_TRUE(eventually([this] { return chat->notice() == ConversationTexts::notSynchronised(); }));
    EXPECT_EQ(state(1), State::Unknown);
    EXPECT_EQ(text(2), u"一半"_s);
}

TEST_F(ChatModelTest, AnotherAccountSeesNothingOfTheFirst) {
    load(u"a"_s);
    turn(u"在吗"_s);
    chat->deeds()->openUsed(text(-1, "messageId"));
    chat->setInput(u"秘密"_s);
    chat->load(u"b"_s);
    become(u"u2"_s);
    EXPECT_TRUE(eventually([this] { return !chat->loading(); }));
    settle();
    EXPECT_FALSE(chat->isOpen()) << "also what was being opened";
    EXPECT_EQ(chat->messages()->rowCount(), 0);
    EXPECT_EQ(chat->input() + chat->title() + chat->conversationId() + chat->errorText() + chat->notice(), QString());
    EXPECT_EQ(chat->balanceText(), u"—"_s);
    load(u"a"_s);
    EXPECT_EQ(chat->input(), QString());
    become(u"u1"_s);
    load(u"a"_s);
    EXPECT_TRUE(eventually([this] { return chat->input() == u"秘密"_s; }));

    // In the middle of a turn.
    holdStream();
    ASSERT_TRUE(chat->send());
    say({delta("一半")});
    ASSERT_TRUE(eventually([this] { return text(-1, "role") == u"twin"_s; }));
    become({});
    EXPECT_TRUE(chat->isIdle());
    EXPECT_EQ(chat->messages()->rowCount(), 0);
}

TEST_F(ChatModelTest, AnotherAnswerToAReply) {
    server.on("/api/app/conversation?id=a",
              StubServer::reply(200, conversation("a", message("m1") + "," + reply("r1", "m1"))));
    load(u"a"_s);
    EXPECT_EQ(text(1, "retryText"), ConversationTexts::retryOffer());
    QTcpSocket *asked = nullptr;
    server.on("/api/app/conversation/retry", [&](const auto &, QTcpSocket &socket) { asked = &socket; });
    ASSERT_TRUE(chat->retryReply(u"r1"_s));
    EXPECT_TRUE(shown(1, "retryBusy").toBool());
    EXPECT_EQ(text(1, "retryText"), ConversationTexts::retryRunning());
    chat->setInput(u"等等"_s);
    EXPECT_FALSE(chat->send());
    EXPECT_EQ(chat->input(), u"等等"_s);
    ASSERT_TRUE(eventually([&] { return asked; }));
    asked->write(StubServer::message(500, "{}"));
    ASSERT_TRUE(eventually([this] { return !chat->retrying(); }));
    EXPECT_FALSE(shown(1, "retryBusy").toBool());
    EXPECT_EQ(text(1, "errorText"), ConversationTexts::retryUnconfirmed());
    EXPECT_FALSE(shown(1, "retryOffered").toBool()) << "it may have been answered, and charged";
    EXPECT_TRUE(shown(1, "reopenOffered").toBool());
    EXPECT_FALSE(chat->retryReply(u"r1"_s));
    chat->reopen();
    ASSERT_TRUE(eventually([this] { return !chat->loading(); }));
    EXPECT_TRUE(shown(1, "retryOffered").toBool());

    server.on("/api/app/conversation/retry", StubServer::reply(200, R"({"messageId":"r2","text":"新","free":true})"));
    QSignalSpy saved(chat.get(), &ChatModel::saved);
    ASSERT_TRUE(chat->retryReply(u"r1"_s));
    EXPECT_EQ(text(1, "errorText"), QString());
    ASSERT_TRUE(eventually([&] { return !chat->retrying() && saved.size() > 0; }));
    EXPECT_EQ(text(2), u"新"_s);
    EXPECT_EQ(text(2, "chargeText"), u"0 Pip"_s);
    EXPECT_EQ(chat->input(), u"等等"_s);

    // Right after a turn, while its save is under way.
    server.on("/api/app/conversation/retry", StubServer::reply(200, R"({"messageId":"r3","text":"又新"})"));
    turn(u"再来"_s);
    QTcpSocket *saving = nullptr;
    server.on(sync, [&](const auto &, QTcpSocket &socket) { saving = &socket; });
    chat->setInput(u"还有"_s);
    ASSERT_TRUE(chat->send());
    ASSERT_TRUE(eventually([&] { return saving; }));
    ASSERT_TRUE(chat->retryReply(text(-1, "messageId")));
    EXPECT_TRUE(shown(-1, "retryBusy").toBool());
    EXPECT_FALSE(chat->retrying());
    server.on(sync, StubServer::reply(200, R"({"ok":true,"revision":4})"));
    saving->write(StubServer::message(200, R"({"ok":true,"revision":3})"));
    EXPECT_EQ(chat->balanceText(), u"97 Pip"_s);
    EXPECT_TRUE(eventually([this] { return text(-1) == u"又新"_s; }));
    EXPECT_EQ(text(-1, "chargeText"), u"—"_s) << "the service did not say that it was free";
    EXPECT_EQ(chat->balanceText() + chat->lastChargeText(), u"——"_s) << "and what is left is not known any more";
}

TEST_F(ChatModelTest, WhatWaitsForASaveGoesAsItWasSentOrNotAtAll) {
    server.on("/api/app/conversation/retry", StubServer::reply(200, R"({"messageId":"r1","text":"新"})"));
    server.on(stream, StubServer::reply(402, "{}"));
    const auto retries = [this] {
        return std::ranges::count(server.requests, "/api/app/conversation/retry", &StubServer::Request::path);
    };
    for (const bool clears : {true, false}) {
        chat->begin(true);
        chat->begin();
        QTcpSocket *saving = nullptr;
        server.on(sync, [&](const auto &, QTcpSocket &socket) { saving = &socket; });
        chat->setInput(u"原话"_s);
        ASSERT_TRUE(chat->send());
        ASSERT_TRUE(eventually([&] { return saving && state(0) == State::Failed; }));
        ASSERT_TRUE(chat->restoreMessage(text(0, "messageId")));
        chat->setInput(u"改过"_s);
        ASSERT_TRUE(chat->send());
        EXPECT_TRUE(shown(0, "retryBusy").toBool());
        if (clears)
            chat->clearRetryTarget();
        else
            chat->setInput(u"改过，还没写完"_s);
        EXPECT_FALSE(shown(0, "retryBusy").toBool());
        saving->write(StubServer::message(200, R"({"ok":true,"revision":3})"));
        EXPECT_TRUE(eventually([this] { return !chat->localOnly(); }));
        settle();
        EXPECT_EQ(retries(), 0) << "neither the words of before nor those that are not finished";
        EXPECT_FALSE(chat->input().isEmpty());
        server.on(sync, StubServer::reply(200, R"({"ok":true,"revision":4})"));
        chat->setInput({});
    }
}

TEST_F(ChatModelTest, WhatNobodyKeepsIsNotAskedForAgain) {
    chat->begin(true);
    turn(u"只在这里说"_s);
    EXPECT_EQ(chat->title(), u"无痕对话"_s) << "titles are seen outside the window";
    EXPECT_FALSE(shown(1, "retryOffered").toBool());
    server.on(stream, StubServer::reply(402, "{}"));
    turn(u"再说一句"_s);
    ASSERT_EQ(state(-1), State::Failed);
    ASSERT_TRUE(chat->restoreMessage(text(-1, "messageId")));
    EXPECT_EQ(chat->input(), u"再说一句"_s);
    EXPECT_EQ(chat->retryTarget(), QString());
    answer({delta("好"), done});
    ASSERT_TRUE(chat->send());
    EXPECT_TRUE(eventually([this] { return chat->isIdle(); }));
    EXPECT_EQ(text(-1), u"好"_s);
}

TEST_F(ChatModelTest, AFailedMessageIsTriedAgainEdited) {
    server.on("/api/app/conversation?id=a", StubServer::reply(200, conversation("a", message("m1", "failed"))));
    load(u"a"_s);
    chat->setInput(u"别的"_s);
    EXPECT_FALSE(chat->restoreMessage(u"m1"_s));
    EXPECT_FALSE(chat->retryMessage(u"m1"_s, u"改过"_s));
    EXPECT_EQ(text(0, "errorText"), ConversationTexts::inputBoxOccupied());
    EXPECT_EQ(chat->input(), u"别的"_s);
    chat->setInput({});
    ASSERT_TRUE(chat->restoreMessage(u"m1"_s));
    EXPECT_EQ(chat->input(), u"m1"_s);
    EXPECT_EQ(text(0, "errorText"), QString());

    chat->setInput(u"改过"_s);
    for (const int status : {402, 500}) {
        SCOPED_TRACE(status);
        server.on("/api/app/conversation/retry", StubServer::reply(status, "{}"));
        ASSERT_TRUE(chat->send());
        ASSERT_TRUE(eventually([this] { return !chat->retrying(); }));
        EXPECT_EQ(text(0, "errorText"), ConversationTexts::retryUnconfirmed());
        EXPECT_EQ(chat->input(), u"改过"_s) << "a failed retry costs nothing that was typed";
        EXPECT_EQ(chat->retryTarget(), u"m1"_s);
        EXPECT_EQ(state(0), status == 402 ? State::Failed : State::Unknown);
        EXPECT_EQ(shown(0, "retryOffered").toBool(), status == 402);
    }
    EXPECT_FALSE(chat->send()) << "it may have been answered, and charged";
    EXPECT_EQ(chat->inputHeldReason(), ConversationTexts::retryUnconfirmed());
    chat->reopen();
    ASSERT_TRUE(eventually([this] { return !chat->loading(); }));
    EXPECT_EQ(state(0), State::Failed) << "as the service has it";
    EXPECT_EQ(chat->input(), u"改过"_s);

    server.on("/api/app/conversation/retry", StubServer::reply(200, R"({"messageId":"r1","text":"新"})"));
    ASSERT_TRUE(chat->send());
    ASSERT_TRUE(eventually([this] { return !chat->retrying(); }));
    EXPECT_EQ(text(0), u"改过"_s);
    EXPECT_EQ(state(0), State::Delivered);
    EXPECT_EQ(text(1), u"新"_s);
    EXPECT_EQ(chat->input() + chat->retryTarget(), QString());
}

TEST_F(ChatModelTest, WhatBecameOfASaveStaysInSight) {
    load(u"a"_s);
    server.on(sync, StubServer::reply(500, "{}"));
    turn(u"在吗"_s);
    EXPECT_EQ(chat->notice(), ConversationTexts::notSynchronised());
    EXPECT_TRUE(chat->localOnly());
    EXPECT_FALSE(chat->retryReply(text(-1, "messageId")));
    EXPECT_EQ(text(-1, "errorText"), ConversationTexts::retryNeedsSave());
    server.on(sync, StubServer::reply(409, "{}"));
    chat->saveAgain();
    EXPECT_TRUE(eventually([this] { return chat->notice() == ConversationTexts::conflict(); }));
    EXPECT_TRUE(chat->conflicted());
    chat->openServiceCopy();
    EXPECT_TRUE(eventually([this] { return !chat->loading(); }));
    EXPECT_FALSE(chat->conflicted());
    EXPECT_EQ(chat->notice(), QString());
    EXPECT_EQ(chat->messages()->rowCount(), 1);
}

TEST_F(ChatModelTest, MemoriesAndFeedback) {
    QAbstractItemModelTester used(chat->deeds()->usedMemories(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    chat->begin();
    answer(
        {R"({"delta":"a","usedMemories":[{"content":"怕冷","truth":"pref"},{"content":"x","truth":"newer"}]})", done});
    turn(u"在吗"_s);
    EXPECT_EQ(text(1, "usedText"), ConversationTexts::usedMemories(2));
    chat->deeds()->openUsed(text(1, "messageId"));
    ASSERT_TRUE(chat->deeds()->usedOpen());
    const auto *memories = chat->deeds()->usedMemories();
    EXPECT_EQ(memories->note(), ConversationTexts::usedMemoriesNote(2));
    EXPECT_EQ(memories->data(memories->index(0), UsedMemoryModel::TruthTextRole), u"偏好"_s);
    EXPECT_EQ(memories->data(memories->index(1), UsedMemoryModel::TruthTextRole), u"newer"_s);

    EXPECT_EQ(chat->deeds()->feedbackReasons().size(), chat->deeds()->feedbackReasonTexts().size());
    server.on("/api/app/feedback", StubServer::reply(200, "{}"));
    chat->deeds()->like(text(1, "messageId"));
    EXPECT_EQ(text(1, "feedback"), u"positive"_s);
    server.on("/api/app/feedback", StubServer::reply(500, "{}"));
    chat->deeds()->dislike(text(1, "messageId"), u"too_long"_s);
    EXPECT_EQ(text(1, "feedback"), u"negative"_s);
    EXPECT_TRUE(eventually([this] { return text(1, "feedback").isEmpty(); })) << "it did not arrive";
    EXPECT_EQ(chat->errorText(), ConversationTexts::feedbackNotSent());
}

TEST_F(ChatModelTest, LinksThatAreNotOpened) {
    for (const char *link :
         {"file:///etc/passwd", "javascript:alert(1)", "https:///x", "tel:110", "lumenpair://x", ""}) {
        EXPECT_FALSE(chat->deeds()->openLink(QUrl(QString::fromLatin1(link)))) << link;
        EXPECT_FALSE(chat->deeds()->linkNotice().isEmpty());
    }
    EXPECT_TRUE(opener.opened.isEmpty());
    EXPECT_TRUE(chat->deeds()->openLink(QUrl(u"HTTPS://example.invalid/a"_s)));
    EXPECT_EQ(chat->deeds()->linkNotice(), QString());
    opener.works = false;
    EXPECT_FALSE(chat->deeds()->openLink(QUrl(u"https://example.invalid/a"_s)));
    EXPECT_TRUE(chat->deeds()->linkNotice().contains(u"example.invalid"_s));
}

} // namespace lmp
