#include "sandbox/SandboxFixture.h"

#include <future>

namespace lmp::sandbox {

namespace {

class RelayRoutesTest : public SandboxFixture {
protected:
    void SetUp() override {
        start();
        m_token = signIn();
    }
    HttpAnswer say(const std::string &text, int maxTokens = 800, bool incognito = false) {
        return post("/api/relay/chat", turn(text, maxTokens, incognito), m_token);
    }

    std::string m_token;
};

TEST_F(RelayRoutesTest, AStreamIsDeltasThenTheChargedClosingFrame) {
    say("记住：周三要交稿");
    const auto answer = stream(m_token, turn("你记得我什么"));
    EXPECT_EQ(answer.status, 200);
    EXPECT_TRUE(answer.orderly);
    ASSERT_GT(answer.frames.size(), 4u) << answer.bytes;
    EXPECT_TRUE(answer.frames.front().contains("delta"));
    EXPECT_NE(answer.text().find("周三要交稿"), std::string::npos) << answer.text();
    const auto &memories = answer.frames[answer.frames.size() - 2];
    EXPECT_EQ(memories.at("usedMemories"), (boost::json::array{{{"content", "周三要交稿"}, {"truth", "fact"}}}));
    const auto closing = answer.last();
    EXPECT_EQ(closing.at("done"), true);
    EXPECT_EQ(closing.at("pipCharged"), 3);
    EXPECT_EQ(closing.at("balance"), 994);
    const auto charges = get("/sandbox/charges", m_token).json().at("charges").as_array();
    ASSERT_EQ(charges.size(), 2u);
    EXPECT_EQ(charges[1].at("requestId"), closing.at("requestId"));
}

TEST_F(RelayRoutesTest, ThePlainRouteHasTheSameContentInOnePiece) {
    const auto answer = say("你好", 300);
    EXPECT_EQ(answer.number("pipCharged"), 1);
    EXPECT_EQ(answer.number("balance"), 999);
    EXPECT_EQ(answer["model"], "offline-twin");
    EXPECT_NE(answer["text"].find("离线分身"), std::string::npos);
    EXPECT_EQ(balance(m_token), 999);
}

TEST_F(RelayRoutesTest, AReaderWhoLeavesIsNotCharged) {
    options.paceMs = 10'000;
    start();
    const auto answer = stream(m_token, turn("我叫小满"), 1);
    EXPECT_EQ(answer.frames.size(), 1u);
    EXPECT_FALSE(answer.orderly);
    ASSERT_TRUE(awaitStreams(0)) << "generating ends with the reader";
    EXPECT_EQ(chargeCount(m_token), 0u);
    EXPECT_EQ(get("/sandbox/memories", m_token).json().at("memories").as_array().size(), 0u);
}

TEST_F(RelayRoutesTest, AnEmptyPurseIsToldBeforeAnythingRuns) {
    post("/sandbox/balance", {{"balance", 2}}, m_token);
    for (const auto *path : {"/api/relay/chat", "/api/relay/chat/stream"}) {
        const auto answer = post(path, turn("你好"), m_token);
        EXPECT_EQ(answer.status, 402);
        EXPECT_EQ(answer["error"], "insufficient_pip");
        EXPECT_EQ(answer.number("needed"), 3);
        EXPECT_EQ(answer.number("balance"), 2);
        EXPECT_FALSE(answer["reason"].empty());
    }
    EXPECT_EQ(say("你好", 300).number("balance"), 1) << "the cheaper turn can still be paid";
}

TEST_F(RelayRoutesTest, TurnsSideBySideAreEachChargedOnce) {
    std::vector<std::future<int>> turns;
    turns.reserve(12);
    for (int i = 0; i < 12; ++i)
        turns.push_back(std::async(std::launch::async, [this] { return say("你好").status; }));
    for (auto &one : turns)
        EXPECT_EQ(one.get(), 200);
    EXPECT_EQ(chargeCount(m_token), 12u);
    EXPECT_EQ(balance(m_token), 1000 - 12 * 3);
}

TEST_F(RelayRoutesTest, PastTheCapStreamsAreBusyAndTheRestGoesOn) {
    options.streamCap = 2;
    options.paceMs = 10'000;
    start();
    auto first = client();
    auto second = client();
    auto one = std::async(std::launch::async, [&] { return stream(first, m_token, turn("你好")); });
    auto two = std::async(std::launch::async, [&] { return stream(second, m_token, turn("你好")); });
    ASSERT_TRUE(awaitStreams(2));
    const auto refused = post("/api/relay/chat/stream", turn("你好"), m_token);
    EXPECT_EQ(refused.status, 503);
    EXPECT_EQ(refused["error"], "busy");
    EXPECT_EQ(say("你好").status, 200) << "other routes have threads left";
    first.stop();
    ASSERT_TRUE(awaitStreams(1));
    EXPECT_EQ(stream(m_token, turn("你好"), 1).status, 200) << "a seat that was left is free again";
    server->stop();
    one.get();
    two.get();
}

TEST_F(RelayRoutesTest, IncognitoLeavesNothingButTheCharge) {
    EXPECT_NE(say("我叫小满，我喜欢下雨天", 800, true)["text"].find("无痕"), std::string::npos);
    EXPECT_EQ(get("/sandbox/memories", m_token).json().at("memories").as_array().size(), 0u);
    EXPECT_EQ(chargeCount(m_token), 1u);
}

TEST_F(RelayRoutesTest, ACrisisIsAnsweredWithHelpOnBothRoutes) {
    const auto streamed = stream(m_token, turn("我不想活了"));
    ASSERT_FALSE(streamed.frames.empty());
    ASSERT_TRUE(streamed.frames.front().contains("safety")) << "help comes before words";
    const auto &block = streamed.frames.front().at("safety").as_object();
    EXPECT_EQ(block.at("crisis"), true);
    EXPECT_EQ(block.at("region"), "CN");
    EXPECT_EQ(block.at("assumedRegion"), false) << "the account's number tells";
    EXPECT_EQ(block.at("resourcesVerified"), false);
    EXPECT_EQ(block.at("resources").at(0).at("phone"), "12356");
    EXPECT_EQ(say("我不想活了").json().at("safety"), block);
    EXPECT_FALSE(say("这个笑话笑死我了").json().contains("safety"));
}

TEST_F(RelayRoutesTest, TheReminderComesAfterAnHourWithoutAPause) {
    const auto reminded = [&] {
        return stream(m_token, turn("嗯")).last().contains("continuousUse");
    };
    EXPECT_FALSE(reminded());
    for (int i = 0; i < 6; ++i) {
        now += 540'000;
        EXPECT_FALSE(reminded()) << i;
    }
    now += 540'000;
    const auto notice = say("嗯").json().at("continuousUse").as_object();
    EXPECT_EQ(notice.at("minutes"), 63);
    EXPECT_FALSE(notice.at("message").as_string().empty());
    EXPECT_FALSE(reminded()) << "not on every turn";
    now += 600'000;
    EXPECT_FALSE(reminded()) << "a pause starts it afresh";
}

TEST_F(RelayRoutesTest, BadTurnsAreRefusedByName) {
    struct Case {
        const char *body;
        const char *named;
    };
    for (const auto &[body, named] :
         {Case{R"({"messages":[]})", "messages"},
          {R"({"messages":"你好"})", "messages"},
          {R"({"messages":[{"role":"assistant","content":"x"}]})", "messages"},
          {R"({"messages":[{"role":"system","content":"x"}]})", "messages[0].role"},
          {R"({"messages":[{"role":"user","content":5}]})", "messages[0].content"},
          {R"({"messages":[{"role":"user","content":"x"}],"maxTokens":"800"})", "maxTokens"},
          {R"({"messages":[{"role":"user","content":"x"}],"maxTokens":1e300})", "maxTokens"},
          {R"({"messages":[{"role":"user","content":"x"}],"incognito":"no"})", "incognito"}})
        for (const auto *path : {"/api/relay/chat", "/api/relay/chat/stream"}) {
            const auto answer = post(path, std::string(body), m_token);
            EXPECT_EQ(answer.status, 400) << body;
            EXPECT_NE(answer["reason"].find(named), std::string::npos) << answer.text;
        }
    EXPECT_EQ(chargeCount(m_token), 0u);
}

} // namespace

} // namespace lmp::sandbox
