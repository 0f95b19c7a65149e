#include "sandbox/SandboxFixture.h"

namespace lmp::sandbox {

namespace {

class ConversationRoutesTest : public SandboxFixture {
protected:
    void SetUp() override {
        start();
        m_token = signIn();
    }

    static boost::json::object conversation(const std::string &id, std::int64_t revision) {
        boost::json::object whole{
            {"id", id},
            {"title", "关于 " + id},
            {"messages",
             {{{"id", "m1"}, {"role", "user"}, {"text", "周末想去爬山"}, {"later", 9007199254740993}},
              {{"id", "m2"}, {"role", "twin"}, {"text", "好"}},
              {{"id", "m3"}, {"role", "user"}, {"text", "去哪座？"}, {"deliveryState", "failed"}}}},
            {"unheard", {{"of", {1, nullptr, "x"}}}}};
        if (revision > 0)
            whole["revision"] = revision;
        return whole;
    }
    HttpAnswer save(const boost::json::object &whole) {
        return post("/api/app/conversation/sync", {{"conversation", whole}}, m_token);
    }

    std::string m_token;
};

TEST_F(ConversationRoutesTest, RevisionsGoUpByOneAndStaleOnesConflict) {
    EXPECT_EQ(save(conversation("c", 1)).status, 409) << "nothing is known of it yet";
    EXPECT_EQ(save(conversation("c", 0)).number("revision"), 1);
    EXPECT_EQ(save(conversation("c", 0))["error"], "conflict");
    EXPECT_EQ(save(conversation("c", 1)).number("revision"), 2);
    EXPECT_EQ(save(conversation("c", 1)).status, 409);
    EXPECT_EQ(save(conversation("c", 3)).status, 409);
    auto expected = conversation("c", 2);
    EXPECT_EQ(get("/api/app/conversation?id=c", m_token).json().at("conversation"), expected)
        << "what nobody here knows is kept as it came";
}

TEST_F(ConversationRoutesTest, TheListHasTheLatestFirstAndOnlyOnesOwn) {
    save(conversation("a", 0));
    save(conversation("b", 0));
    save(conversation("a", 1));
    const auto list = get("/api/app/conversations", m_token).json().at("conversations").as_array();
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0].at("id"), "a");
    EXPECT_EQ(list[1].at("title"), "关于 b");
    const auto other = signIn("13800138001");
    EXPECT_EQ(get("/api/app/conversation?id=a", other)["error"], "not_found");
    EXPECT_EQ(get("/api/app/conversations", other).json().at("conversations").as_array().size(), 0u);
    EXPECT_EQ(post("/api/app/conversation/sync", {{"conversation", conversation("a", 0)}}, other).number("revision"), 1)
        << "ids are each account's own";
}

TEST_F(ConversationRoutesTest, WhatIsNoConversationIsRefusedByName) {
    struct Case {
        const char *body;
        const char *named;
    };
    for (const auto &[body, named] :
         {Case{R"({"conversation":[]})", "conversation"},
          {R"({"conversation":{"title":"t","messages":[]}})", "conversation.id"},
          {R"({"conversation":{"id":"c","title":1,"messages":[]}})", "conversation.title"},
          {R"({"conversation":{"id":"c","title":"t"}})", "conversation.messages"},
          {R"({"conversation":{"id":"c","title":"t","messages":[7]}})", "conversation.messages[0]"},
          {R"({"conversation":{"id":"c","title":"t","messages":[{"id":"m","role":"god","text":""}]}})",
           "messages[0].role"},
          {R"({"conversation":{"id":"c","title":"t","messages":[],"revision":"1"}})", "conversation.revision"},
          {R"({"conversation":{"id":"c","title":"t","messages":[],"revision":1.5}})", "conversation.revision"}}) {
        const auto answer = post("/api/app/conversation/sync", std::string(body), m_token);
        EXPECT_EQ(answer.status, 400) << body;
        EXPECT_NE(answer["reason"].find(named), std::string::npos) << body << answer.text;
    }
}

TEST_F(ConversationRoutesTest, AnotherAnswerIsFreeAndNew) {
    save(conversation("c", 0));
    const auto retry = [&](const char *message, const char *edited = nullptr, const char *id = "c") {
        boost::json::object body{{"conversationId", id}, {"userMessageId", message}};
        if (edited)
            body["editedInput"] = edited;
        return post("/api/app/conversation/retry", body, m_token);
    };
    const auto answer = retry("m3", "我刚才说了什么");
    EXPECT_EQ(answer.json().at("free"), true);
    EXPECT_NE(answer["text"].find("周末想去爬山"), std::string::npos) << answer.text;
    EXPECT_LE(answer["messageId"].size(), 48u);
    EXPECT_NE(answer["messageId"], retry("m3")["messageId"]);
    EXPECT_EQ(chargeCount(m_token), 0u);
    EXPECT_EQ(retry("m2").status, 404) << "a twin's message is nothing to answer";
    EXPECT_EQ(retry("m9").status, 404);
    EXPECT_EQ(retry("m1", nullptr, "zzz").status, 404);
    EXPECT_EQ(get("/api/app/conversation?id=c", m_token).json().at("conversation").at("revision"), 1)
        << "the client saves the answer, and finds no conflict";
}

TEST_F(ConversationRoutesTest, FeedbackIsChecked) {
    boost::json::object body{
        {"polarity", "negative"}, {"reason", "too_long"}, {"conversationId", "c"}, {"messageId", "m"}};
    EXPECT_EQ(post("/api/app/feedback", body, m_token).json().at("ok"), true);
    body["polarity"] = "meh";
    EXPECT_EQ(post("/api/app/feedback", body, m_token).status, 400);
}

} // namespace

} // namespace lmp::sandbox
