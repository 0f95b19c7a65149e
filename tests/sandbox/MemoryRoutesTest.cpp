#include "sandbox/SandboxFixture.h"

namespace lmp::sandbox {

namespace {

class MemoryRoutesTest : public SandboxFixture {
protected:
    void SetUp() override {
        start();
        m_token = signIn();
    }
    boost::json::array scan(const std::string &text) {
        const auto answer =
            post("/api/app/memory/extract", {{"messages", {{{"role", "user"}, {"content", text}}}}}, m_token);
        EXPECT_EQ(answer.status, 200);
        return answer.json().at("candidates").as_array();
    }
    boost::json::object confirm(const boost::json::value &candidate) {
        return post("/api/app/memory/candidate/confirm", {{"candidateId", candidate.at("id")}}, m_token).json();
    }
    boost::json::array items() { return get("/api/app/memory", m_token).json().at("items").as_array(); }
    boost::json::object history(const std::string &id) {
        return get("/api/app/memory/history?memoryId=" + id, m_token).json();
    }

    std::string m_token;
};

TEST_F(MemoryRoutesTest, ACandidateBecomesAMemoryAndReplacesAnOlderOne) {
    const auto first = scan("我住在杭州");
    ASSERT_EQ(first.size(), 1u);
    EXPECT_EQ(items().size(), 0u) << "nothing is written before it is confirmed";
    EXPECT_EQ(scan("我住在杭州").size(), 0u) << "it waits already";
    EXPECT_FALSE(confirm(first[0]).contains("supersededContent"));
    EXPECT_EQ(post("/api/app/memory/candidate/confirm", {{"candidateId", first[0].at("id")}}, m_token).status, 404);
    const auto moved = confirm(scan("我住在成都")[0]);
    EXPECT_EQ(moved.at("supersededContent"), "住在杭州");
    const auto list = items();
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0].at("supersedes"), list[1].at("id"));
    const auto back = confirm(scan("我住在杭州")[0]);
    EXPECT_EQ(back.at("supersededContent"), "住在成都");
    EXPECT_EQ(items().size(), 2u) << "a wording stands in the ledger once";
}

TEST_F(MemoryRoutesTest, EditsNeedTheRevisionTheySaw) {
    const std::string id(confirm(scan("我喜欢爬山")[0]).at("item").at("id").as_string());
    const auto correct = [&](const std::string &content, const std::string &revision) {
        return post("/api/app/memory/correct", {{"memoryId", id}, {"content", content}, {"expectedRevision", revision}},
                    m_token);
    };
    const auto revert = [&](const std::string &revision) {
        return post("/api/app/memory/revert", {{"memoryId", id}, {"expectedRevision", revision}}, m_token);
    };
    EXPECT_EQ(revert("r1").json().at("changed"), false);
    EXPECT_EQ(correct("喜欢徒步", "r1")["revision"], "r2");
    EXPECT_EQ(correct("喜欢游泳", "r1").status, 409);
    EXPECT_EQ(revert("r1").status, 409);
    EXPECT_EQ(revert("r2")["content"], "喜欢爬山");
    const auto now = history(id);
    EXPECT_EQ(now.at("revision"), "r3");
    EXPECT_EQ(now.at("entries").as_array().size(), 2u);
    EXPECT_EQ(items()[0].at("truth"), "fact");
}

TEST_F(MemoryRoutesTest, WhatIsForgottenOrFrozenIsNotUsed) {
    const auto item = confirm(scan("我喜欢爬山")[0]).at("item").as_object();
    const auto used = [&] {
        return get("/sandbox/memories", m_token).json().at("memories").as_array().size();
    };
    EXPECT_EQ(used(), 1u);
    post("/api/app/memory/freeze", {{"memoryId", item.at("id")}, {"frozen", true}}, m_token);
    EXPECT_EQ(used(), 0u);
    EXPECT_EQ(items().size(), 1u);
    post("/api/app/memory/freeze", {{"memoryId", item.at("id")}, {"frozen", false}}, m_token);
    const auto forgotten = post("/api/app/memory/forget", {{"memoryId", item.at("id")}}, m_token).json();
    EXPECT_EQ(items().size(), 0u);
    EXPECT_EQ(used(), 0u);
    EXPECT_EQ(post("/api/app/memory/restore", {{"item", forgotten.at("item")}}, signIn("13800138001")).status, 404);
    EXPECT_EQ(post("/api/app/memory/restore", {{"item", forgotten.at("item")}}, m_token).status, 200);
    EXPECT_EQ(used(), 1u);
}

TEST_F(MemoryRoutesTest, AScanIsChargedAndOthersSeeNothing) {
    const auto before = get("/sandbox/charges", m_token).number("balance");
    const auto answer =
        post("/api/app/memory/extract", {{"messages", {{{"role", "assistant"}, {"content", "我喜欢爬山"}}}}}, m_token);
    EXPECT_EQ(answer.json().at("candidates").as_array().size(), 0u) << "the twin's words are not the user's";
    EXPECT_TRUE(answer.json().contains("skipped"));
    EXPECT_EQ(answer.number("balance"), before - answer.number("pipCharged"));
    scan("我喜欢爬山");
    const auto other = get("/api/app/memory", signIn("13800138001")).json();
    EXPECT_EQ(other.at("candidates").as_array().size(), 0u);
}

TEST_F(MemoryRoutesTest, AChapterIsProposedOnceAndAnswered) {
    for (const auto *text : {"我叫小林", "我住在成都", "我喜欢爬山", "我喜欢喝茶", "我养了猫"})
        confirm(scan(text)[0]);
    const auto chapters = [&] {
        return get("/api/app/memory", m_token).json().at("chapters").as_array();
    };
    ASSERT_EQ(chapters().size(), 1u);
    ASSERT_EQ(chapters().size(), 1u);
    EXPECT_EQ(chapters()[0].at("pending"), true);
    const boost::json::value id = chapters()[0].at("id");
    EXPECT_EQ(post("/api/app/chapter/resolve", {{"chapterId", id}, {"decision", "maybe"}}, m_token).status, 400);
    EXPECT_EQ(post("/api/app/chapter/resolve", {{"chapterId", id}, {"decision", "accept"}}, m_token).status, 200);
    EXPECT_EQ(chapters()[0].at("pending"), false);
}

} // namespace

} // namespace lmp::sandbox
