#include "ChatModelFixture.h"

#include "support/MemorySettings.h"

namespace lmp {

using namespace Qt::StringLiterals;

class ExtractionModelTest : public ChatModelFixture {
protected:
    static constexpr const char *path = "/api/app/memory/extract";
    static inline const QByteArray found =
        R"({"candidates":[{"id":"c1","content":"养猫","why":"说过","scope":"全部"},
        {"id":"c2","content":"怕高","why":"说过","scope":"全部"}],"pipCharged":2})";

    ExtractionModel &extraction() { return *chat->extraction(); }
    qsizetype requests() const {
        return std::ranges::count(server.requests, QByteArray(path), &StubServer::Request::path);
    }
    qsizetype sent() const {
        const auto last = std::ranges::find(server.requests.rbegin(), server.requests.rend(), QByteArray(path),
                                            &StubServer::Request::path);
        return Json::decode<MemoryExtractService::Body>(last->body)->messages.size();
    }
    /// Takes readings and answers none until told.
    void holdReadings() {
        server.on(path, [this](const auto &, QTcpSocket &socket) { late = &socket; });
    }
    void answerReading(const QByteArray &body) {
        ASSERT_TRUE(eventually([this] { return late; }));
        late->write(StubServer::message(200, body));
        late->flush();
        late = nullptr;
    }
    /// Another start of the program, on the same settings, or a second window of it.
    std::unique_ptr<ChatModel> window(ExtractionProgress &progress) {
        auto shared = services();
        shared.extractions = &progress;
        return std::make_unique<ChatModel>(shared);
    }
    static QByteArray messages(int count) {
        QByteArrayList all;
        for (int at = 0; at < count; ++at)
            all << message("m" + QByteArray::number(at));
        return all.join(',');
    }
    void extract() {
        extraction().extract();
        ASSERT_TRUE(eventually([&] { return !extraction().extracting(); }));
    }

    QPointer<QTcpSocket> late;
};

TEST_F(ExtractionModelTest, OnlyWhatIsNewIsRead) {
    server.on(path, StubServer::reply(200, R"({"candidates":[],"pipCharged":1,"skipped":"没有"})"));
    chat->begin();
    extract();
    EXPECT_EQ(extraction().message(), u"还没有新的内容需要整理。"_s);
    EXPECT_EQ(requests(), 0);
    turn(u"我养了猫"_s);
    extract();
    EXPECT_EQ(extraction().message(), u"这次没有新的记忆候选。"_s);
    EXPECT_EQ(extraction().extractedUpTo(), 2);
    const auto body = Json::decode<MemoryExtractService::Body>(server.requests.back().body);
    ASSERT_TRUE(body);
    ASSERT_EQ(body->messages.size(), 2);
    EXPECT_EQ(body->messages[0].role, u"user"_s);
    EXPECT_EQ(body->messages[0].content, u"我养了猫"_s);
    EXPECT_EQ(body->messages[1].role, u"assistant"_s);
    extract();
    EXPECT_EQ(requests(), 1) << "all of it was read";
    turn(u"还怕高"_s);
    // A reading that failed is done again.
    server.on(path, StubServer::reply(500, "{}"));
    extract();
    EXPECT_EQ(extraction().message(), u"整理未完成，请稍后重试。"_s);
    EXPECT_EQ(extraction().extractedUpTo(), 2);
    server.on(path, StubServer::reply(200, found));
    extract();
    EXPECT_TRUE(extraction().isOpen());
    EXPECT_EQ(extraction().extractCharge(), 2);
    EXPECT_EQ(extraction().costText(), u"整理这一次花了 2 Pip"_s);
    EXPECT_EQ(extraction().extracted().size(), 2u);
    EXPECT_EQ(extraction().extractedUpTo(), 4);
}

TEST_F(ExtractionModelTest, NobodyReadsAnIncognitoChat) {
    chat->begin(true);
    turn(u"不要留下"_s);
    extract();
    EXPECT_EQ(requests(), 0);
    EXPECT_FALSE(extraction().message().isEmpty());
}

TEST_F(ExtractionModelTest, AnAnswerForAnotherConversationIsDropped) {
    holdReadings();
    load(u"a"_s);
    extraction().extract();
    ASSERT_TRUE(eventually([&] { return late; }));
    load(u"b"_s);
    answerReading(found);
    await(ConversationService(api).list());
    settle();
    EXPECT_FALSE(extraction().isOpen());
    EXPECT_TRUE(extraction().message().isEmpty());
    EXPECT_EQ(extraction().extractedUpTo(), 0) << "of this one nothing was read";
    load(u"a"_s);
    EXPECT_EQ(extraction().extractedUpTo(), 1) << "it was read, and paid for";
}

TEST_F(ExtractionModelTest, NothingIsPaidForTwice) {
    // Away and back while it is being read: it still is, and what was found is shown.
    holdReadings();
    load(u"a"_s);
    extraction().extract();
    ASSERT_TRUE(eventually([&] { return late; }));
    load(u"b"_s);
    EXPECT_FALSE(extraction().extracting());
    load(u"a"_s);
    EXPECT_TRUE(extraction().extracting());
    extraction().extract();
    answerReading(found);
    ASSERT_TRUE(eventually([&] { return extraction().isOpen(); }));
    extract();
    EXPECT_EQ(requests(), 1);
    // Under another id it is the same, read before or just then.
    chat->saveAsNew();
    extract();
    EXPECT_EQ(extraction().message(), u"还没有新的内容需要整理。"_s);
    load(u"b"_s);
    extraction().extract();
    ASSERT_TRUE(eventually([&] { return late; }));
    chat->saveAsNew();
    EXPECT_TRUE(extraction().extracting());
    answerReading(found);
    ASSERT_TRUE(eventually([&] { return !extraction().extracting(); }));
    extract();
    EXPECT_EQ(requests(), 2);
}

TEST_F(ExtractionModelTest, WindowsAndStartsOfTheProgramShareWhatWasRead) {
    MemorySettings settings;
    {
        ExtractionProgress progress(&settings);
        auto first = window(progress), second = window(progress);
        for (auto *one : {&first, &second}) {
            (*one)->load(u"a"_s);
            ASSERT_TRUE(eventually([&] { return !(*one)->loading(); }));
        }
        holdReadings();
        first->extraction()->extract();
        ASSERT_TRUE(eventually([&] { return late; }));
        EXPECT_TRUE(second->extraction()->extracting());
        second->extraction()->extract();
        first.reset(); // its window is closed before the answer
        answerReading(found);
        ASSERT_TRUE(eventually([&] { return !second->extraction()->extracting(); }));
        second->extraction()->extract();
        EXPECT_EQ(second->extraction()->message(), u"还没有新的内容需要整理。"_s);
    }
    ExtractionProgress later(&settings);
    const auto again = window(later);
    again->load(u"a"_s);
    ASSERT_TRUE(eventually([&] { return !again->loading(); }));
    again->extraction()->extract();
    EXPECT_EQ(again->extraction()->message(), u"还没有新的内容需要整理。"_s);
    // An answer that was overtaken takes nothing back.
    const QString place = ExtractionProgress::place(u"u1"_s, u"z"_s);
    const auto early = later.begin(place);
    later.end(later.begin(place), 9);
    later.end(early, 4);
    EXPECT_EQ(later.upTo(place), 9);
    EXPECT_EQ(requests(), 1);
}

TEST_F(ExtractionModelTest, ALongConversationIsReadInPortions) {
    server.on("/api/app/conversation?id=a", StubServer::reply(200, conversation("a", messages(450))));
    server.on(path, StubServer::reply(200, R"({"candidates":[],"pipCharged":1})"));
    load(u"a"_s);
    for (const auto &[count, said] : std::initializer_list<std::pair<qsizetype, QString>>{
             {200, u"这次没有新的记忆候选。还有 250 条消息没有整理，可以接着整理。"_s},
             {200, u"这次没有新的记忆候选。还有 50 条消息没有整理，可以接着整理。"_s},
             {50, u"这次没有新的记忆候选。"_s}}) {
        extract();
        EXPECT_EQ(sent(), count);
        EXPECT_EQ(extraction().message(), said);
    }
    EXPECT_EQ(extraction().extractedUpTo(), 450);
}

TEST(MemoryExtractServiceTest, AHugeMessageGoesAloneAndNoneIsPassedOver) {
    ConversationDTO conversation;
    for (const qsizetype size : {10, 300'000, 0, 150'000, 60'000, 5}) {
        ConvMessageDTO message;
        message.text = QString(size, u'字');
        conversation.messages.push_back(message);
    }
    QList<qsizetype> counts;
    for (qsizetype at = 0; at < conversation.messages.size();) {
        const auto portion = MemoryExtractService::Portion::of(conversation, at);
        ASSERT_GT(portion.upTo, at);
        counts << portion.body.messages.size();
        at = portion.upTo;
    }
    EXPECT_EQ(counts, (QList<qsizetype>{1, 1, 1, 2}));
}

TEST_F(ExtractionModelTest, EachCandidateIsAnsweredByItself) {
    server.on(path, StubServer::reply(200, found));
    load(u"a"_s);
    extract();
    ASSERT_TRUE(extraction().isOpen());
    server.on("/api/app/memory/candidate/confirm", StubServer::reply(500, "{}"));
    extraction().confirm(u"c1"_s);
    ASSERT_TRUE(eventually([&] { return extraction().reportFailed(); }));
    EXPECT_EQ(extraction().report(), u"没记下来，稍后再试——这条仍在「分身 → 记忆账本」的待确认里。"_s);
    server.on("/api/app/memory/candidate/confirm", StubServer::reply(200, R"({"supersededContent":"养狗"})"));
    extraction().confirm(u"c1"_s);
    EXPECT_TRUE(extraction().extracted()[0].busy);
    EXPECT_TRUE(extraction().noneTaken());
    ASSERT_TRUE(eventually([&] { return !extraction().extracted()[0].handledText.isEmpty(); }));
    EXPECT_FALSE(extraction().noneTaken());
    EXPECT_EQ(extraction().report(), u"已收下，并取代了更早的「养狗…」——旧的仍留在记忆账本里，标着有效期。"_s);
    server.on("/api/app/memory/candidate/dismiss", StubServer::reply(500, "{}"));
    extraction().dismiss(u"c2"_s);
    ASSERT_TRUE(eventually([&] { return extraction().reportFailed(); }));
    EXPECT_EQ(extraction().report(), u"没丢掉，稍后再试。"_s);
    EXPECT_FALSE(extraction().allHandled());
    server.on("/api/app/memory/candidate/dismiss", StubServer::reply(200, "{}"));
    extraction().dismiss(u"c2"_s);
    ASSERT_TRUE(eventually([&] { return extraction().allHandled(); }));
}

} // namespace lmp
