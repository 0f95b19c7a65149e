#include "ChatModelFixture.h"

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
    void extract() {
        extraction().extract();
        ASSERT_TRUE(eventually([&] { return !extraction().extracting(); }));
    }
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
    QPointer<QTcpSocket> late;
    server.on(path, [&](const auto &, QTcpSocket &socket) { late = &socket; });
    load(u"a"_s);
    extraction().extract();
    ASSERT_TRUE(eventually([&] { return late; }));
    load(u"b"_s);
    late->write(StubServer::message(200, found));
    late->flush();
    await(ConversationService(api).list());
    settle();
    EXPECT_FALSE(extraction().isOpen());
    EXPECT_TRUE(extraction().message().isEmpty());
    EXPECT_EQ(extraction().extractedUpTo(), 0) << "of this one nothing was read";
    load(u"a"_s);
    EXPECT_EQ(extraction().extractedUpTo(), 1) << "it was read, and paid for";
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
    ASSERT_TRUE(eventually([&] { return !extraction().extracted()[0].handledText.isEmpty(); }));
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
