#include "sandbox/SandboxFixture.h"

#include <future>

namespace lmp::sandbox {

namespace {

class FaultTableTest : public SandboxFixture {
protected:
    void SetUp() override {
        start();
        m_token = signIn();
    }
    StreamAnswer faultyStream(boost::json::object fault, const std::string &text = "你好") {
        fault["route"] = "/relay/chat/stream";
        EXPECT_EQ(post("/sandbox/faults", fault).status, 200);
        return stream(m_token, turn(text));
    }

    std::string m_token;
};

TEST_F(FaultTableTest, RulesMatchCountDownAndClear) {
    EXPECT_EQ(post("/sandbox/faults", {{"route", "/api/app/conv*"}, {"times", 2}, {"status", 500}}).status, 200);
    EXPECT_EQ(get("/api/app/auth/me", m_token).status, 200);
    const auto first = get("/api/app/conversations", m_token);
    EXPECT_EQ(first.status, 500);
    EXPECT_EQ(first["error"], "fault_injected");
    EXPECT_EQ(get("/sandbox/faults").json().at("faults").at(0).at("times"), 1);
    EXPECT_EQ(get("/api/app/conversation?id=x", m_token).status, 500);
    EXPECT_EQ(get("/api/app/conversations", m_token).status, 200);

    post("/sandbox/faults", {{"route", "*"}, {"times", -1}, {"status", 503}, {"body", "<html>下线</html>"}});
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(get("/api/app/conversations", m_token).text, "<html>下线</html>");
    EXPECT_EQ(wrap(client().Delete("/sandbox/faults")).status, 200) << "the switch itself stays within reach";
    EXPECT_EQ(get("/api/app/conversations", m_token).status, 200);
}

TEST_F(FaultTableTest, BadRulesAreRefused) {
    for (const auto *rule : {R"({})", R"({"route":"/x","sttaus":500})", R"({"route":"/x","status":42})",
                             R"({"route":"/x","cutAfterEvents":"1"})", R"({"route":"/x","delayMs":-1})"})
        EXPECT_EQ(post("/sandbox/faults", std::string(rule)).status, 400) << rule;
    EXPECT_EQ(get("/sandbox/faults").json().at("faults").as_array().size(), 0u);
}

TEST_F(FaultTableTest, EachStreamFaultDoesWhatItSaysAndChargesNothing) {
    const auto cut = faultyStream({{"cutAfterEvents", 2}});
    EXPECT_EQ(cut.frames.size(), 2u);
    EXPECT_FALSE(cut.orderly) << "the connection breaks in the middle of the body";

    const auto unended = faultyStream({{"noDone", true}});
    EXPECT_TRUE(unended.orderly);
    EXPECT_TRUE(unended.last().contains("delta"));

    const auto aborted = faultyStream({{"abort", true}});
    EXPECT_EQ(aborted.frames.size(), 3u);
    EXPECT_EQ(aborted.last().at("error"), "stream_aborted");

    const auto spoilt = faultyStream({{"garbageAfterEvents", 1}});
    EXPECT_EQ(spoilt.frames.size(), 1u);
    EXPECT_NE(spoilt.bytes.find("\xFF\xFE"), std::string::npos);
    EXPECT_EQ(faultyStream({{"garbage", true}}).frames.size(), 0u);

    const auto refused = faultyStream({{"status", 404}, {"body", {{"error", "gone"}}}});
    EXPECT_EQ(refused.status, 404);
    EXPECT_EQ(refused.bytes, R"({"error":"gone"})");
    EXPECT_EQ(chargeCount(m_token), 0u);
}

TEST_F(FaultTableTest, ChargedAllTheSame) {
    const auto empty = faultyStream({{"empty", true}});
    EXPECT_EQ(empty.frames.size(), 1u);
    EXPECT_EQ(empty.last().at("pipCharged"), 3) << "an empty turn is a charged one";
    faultyStream({{"cutAfterEvents", 1}, {"charge", true}});
    faultyStream({{"noDone", true}, {"charge", true}});
    faultyStream({{"abort", true}, {"charge", true}});
    faultyStream({{"status", 500}, {"charge", true}});
    EXPECT_EQ(chargeCount(m_token), 5u);
    EXPECT_EQ(balance(m_token), 1000 - 15);
}

TEST_F(FaultTableTest, SplittingBytesChangesNothingElse) {
    const auto answer = faultyStream({{"chunkBytes", 1}}, "我不想活了");
    EXPECT_TRUE(answer.orderly);
    EXPECT_TRUE(answer.frames.front().contains("safety"));
    EXPECT_EQ(answer.last().at("done"), true);
    post("/sandbox/faults", {{"route", "/app/auth/me"}, {"chunkBytes", 1}});
    EXPECT_TRUE(get("/api/app/auth/me", m_token).json().contains("userInfo"));
}

TEST_F(FaultTableTest, PlainAnswersBreakInTheirMiddle) {
    post("/sandbox/faults", {{"route", "/relay/chat"}, {"cutAfterEvents", 0}});
    EXPECT_EQ(post("/api/relay/chat", turn("你好"), m_token).status, -1) << "no whole answer came";
    post("/sandbox/faults", {{"route", "/relay/chat"}, {"garbage", true}});
    const auto garbage = post("/api/relay/chat", turn("你好"), m_token);
    EXPECT_EQ(garbage.status, 200);
    EXPECT_TRUE(garbage.json().empty());
    EXPECT_EQ(chargeCount(m_token), 0u);
    post("/sandbox/faults", {{"route", "/relay/chat"}, {"empty", true}});
    EXPECT_EQ(post("/api/relay/chat", turn("你好"), m_token)["text"], "");
    EXPECT_EQ(chargeCount(m_token), 1u);
}

TEST_F(FaultTableTest, StallsAndDelaysEndWithTheReaderOrTheServer) {
    post("/sandbox/faults", {{"route", "/relay/chat/stream"}, {"stallAfterEvents", 1}});
    post("/sandbox/faults", {{"route", "/app/auth/me"}, {"delayMs", 600'000}});
    auto leaving = client();
    auto stalled = std::async(std::launch::async, [&] { return stream(leaving, m_token, turn("你好")); });
    ASSERT_TRUE(awaitStreams(1));
    leaving.stop();
    EXPECT_TRUE(awaitStreams(0));
    EXPECT_LE(stalled.get().frames.size(), 1u);
    EXPECT_EQ(chargeCount(m_token), 0u);

    auto delayed = std::async(std::launch::async, [&] { return get("/api/app/auth/me", m_token).status; });
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!get("/sandbox/faults").json().at("faults").as_array().empty())
        ASSERT_LT(std::chrono::steady_clock::now(), deadline);
    const auto before = std::chrono::steady_clock::now();
    server->stop();
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(20)) << "ten minutes were asked for";
    EXPECT_NE(delayed.get(), 200);
}

} // namespace

} // namespace lmp::sandbox
