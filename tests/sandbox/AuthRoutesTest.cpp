#include "sandbox/SandboxFixture.h"

#include <set>

namespace lmp::sandbox {

namespace {

class AuthRoutesTest : public SandboxFixture {
protected:
    void SetUp() override { start(); }

    std::string emailCode(const std::string &email) {
        return post("/api/app/auth/email", {{"email", email}})["devCode"];
    }
    HttpAnswer registerEmail(const std::string &email, const std::string &password, const std::string &code) {
        return post("/api/app/auth/email-register", {{"email", email}, {"password", password}, {"code", code}});
    }
};

TEST_F(AuthRoutesTest, SmsCreatesTheAccountOnceAndTellsWhich) {
    for (const auto *expected : {"register", "login"}) {
        const auto code = post("/api/app/auth/sms", {{"phone", "138-0013 8000"}, {"dialCode", "+86"}})["devCode"];
        ASSERT_EQ(code.size(), 6u);
        const auto answer =
            post("/api/app/auth/sms-login", {{"phone", "13800138000"}, {"dialCode", "+86"}, {"code", code}});
        EXPECT_EQ(answer.status, 200);
        EXPECT_EQ(answer["type"], expected);
        const auto me = get("/api/app/auth/me", answer["token"]).json();
        EXPECT_EQ(me.at("userInfo"), answer.json().at("userInfo"));
        EXPECT_FALSE(me.at("userInfo").as_object().contains("handle"));
    }
}

TEST_F(AuthRoutesTest, CodesAreBoundCountedAndWorkOnce) {
    const auto login = [&](const std::string &phone, const std::string &code) {
        return post("/api/app/auth/sms-login", {{"phone", phone}, {"dialCode", "+86"}, {"code", code}});
    };
    const auto send = [&](const std::string &phone) {
        return post("/api/app/auth/sms", {{"phone", phone}, {"dialCode", "+86"}})["devCode"];
    };
    const auto code = send("13800138000");
    EXPECT_EQ(login("13900139000", code)["error"], "code_invalid") << "another number's code";
    EXPECT_EQ(registerEmail("a@b.cn", "secret1", code)["error"], "code_invalid") << "another purpose's code";
    EXPECT_EQ(login("13800138000", code).status, 200);
    EXPECT_EQ(login("13800138000", code)["error"], "code_invalid") << "used up";

    const auto expired = send("13800138000");
    now += 300'000;
    EXPECT_EQ(login("13800138000", expired)["error"], "code_expired");

    const auto guarded = send("13800138000");
    const std::string wrong = guarded == "000000" ? "000001" : "000000";
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(login("13800138000", wrong).status, 400);
    const auto refused = login("13800138000", guarded);
    EXPECT_EQ(refused.status, 429);
    EXPECT_FALSE(refused["reason"].empty());
    EXPECT_EQ(login("13800138000", send("13800138000")).status, 200) << "a new code starts afresh";
}

TEST_F(AuthRoutesTest, EmailRegistrationPasswordAndReset) {
    EXPECT_EQ(registerEmail("Lin@Example.com", "short", emailCode("lin@example.com"))["error"], "password_unusable");
    EXPECT_EQ(registerEmail("Lin@Example.com", "first-secret", emailCode("lin@example.com"))["type"], "register");
    EXPECT_EQ(registerEmail("lin@example.com", "other-secret", emailCode("lin@example.com")).status, 409);
    const auto login = [&](const std::string &password) {
        return post("/api/app/auth/email-login", {{"email", "lin@example.com"}, {"password", password}});
    };
    EXPECT_EQ(login("wrong-secret").status, 401);
    EXPECT_EQ(login("first-secret")["type"], "login");

    EXPECT_EQ(post("/api/app/auth/reset-code", {{"email", "nobody@example.com"}}).status, 404);
    const auto code = post("/api/app/auth/reset-code", {{"email", "lin@example.com"}})["devCode"];
    EXPECT_EQ(post("/api/app/auth/reset", {{"email", "lin@example.com"}, {"code", code}, {"newPassword", "new-secret"}})
                  .status,
              200);
    EXPECT_EQ(login("first-secret").status, 401);
    EXPECT_EQ(login("new-secret").status, 200);
}

TEST_F(AuthRoutesTest, PhonePasswordComesThroughAReset) {
    signIn();
    const auto login = [&](const std::string &password) {
        return post("/api/app/auth/login", {{"phone", "13800138000"}, {"password", password}}).status;
    };
    EXPECT_EQ(login(""), 401) << "an account without a password";
    const auto code = post("/api/app/auth/reset-code", {{"phone", "13800138000"}, {"dialCode", "+86"}})["devCode"];
    EXPECT_EQ(
        post("/api/app/auth/reset", {{"phone", "13800138000"}, {"code", code}, {"newPassword", "secret-1"}}).status,
        200);
    EXPECT_EQ(login("secret-1"), 200);
}

TEST_F(AuthRoutesTest, TokensAreNeededWhereverSomebodyIsMeant) {
    const auto token = signIn();
    const auto bearer = client().Get("/api/app/auth/me", {{"Authorization", "Bearer " + token}});
    EXPECT_EQ(bearer->status, 200);
    for (const std::string wrong : {"", "sbx_unknown"}) {
        for (const auto *path : {"/api/app/auth/me", "/api/app/conversations", "/api/app/conversation?id=x",
                                 "/api/app/handle/suggest", "/sandbox/charges"})
            EXPECT_EQ(get(path, wrong).status, 401) << path;
        EXPECT_EQ(post("/api/relay/chat/stream", turn("你好"), wrong).status, 401);
    }
}

TEST_F(AuthRoutesTest, GuestRoundsCountDownAndEnd) {
    options.guestRounds = 2;
    start();
    const auto opened = post("/api/app/guest/session", boost::json::object()).json().at("guest").as_object();
    EXPECT_EQ(opened.at("roundsLeft"), 2);
    const std::string token(opened.at("token").as_string());
    for (const int left : {1, 0}) {
        const auto answer = post("/api/app/guest/chat", {{"guestToken", token}, {"message", "你好"}});
        EXPECT_EQ(answer.number("roundsLeft"), left);
        EXPECT_FALSE(answer["reply"].empty());
    }
    EXPECT_EQ(post("/api/app/guest/chat", {{"guestToken", token}, {"message", "你好"}})["error"], "guest_exhausted");
    EXPECT_EQ(post("/api/app/guest/chat", {{"guestToken", "x"}, {"message", "你好"}}).status, 401);
}

TEST_F(AuthRoutesTest, HandlesAreValidUniqueAndSuggested) {
    const auto first = signIn("13800138000");
    const auto second = signIn("13800138001");
    EXPECT_EQ(post("/api/app/handle", {{"handle", "@Xiao_Lin"}}, first)["twinHandle"], "xiao_lin.twin");
    EXPECT_EQ(post("/api/app/handle", {{"handle", "xiao_lin"}}, second).status, 409);
    EXPECT_EQ(get("/api/app/auth/me", first).json().at("userInfo").at("handle"), "xiao_lin");
    struct Case {
        const char *input;
        bool available;
    };
    for (const auto &[input, available] : {Case{"xiao_lin", false},
                                           {"ab", false},
                                           {"9lives", false},
                                           {"admin", false},
                                           {"%E5%B0%8F%E6%9E%97%E5%B0%8F", false},
                                           {"wanderer", true}}) {
        const auto answer = get(std::string("/api/app/handle/check?handle=") + input, second);
        EXPECT_EQ(answer.json().at("available"), available) << input;
        EXPECT_EQ(answer["reason"].empty(), available) << input;
    }
    EXPECT_EQ(get("/api/app/handle/check?handle=xiao_lin", first).json().at("available"), true) << "one's own";
    const auto suggestions = get("/api/app/handle/suggest", second).json().at("suggestions").as_array();
    ASSERT_FALSE(suggestions.empty());
    EXPECT_EQ(post("/api/app/handle", {{"handle", suggestions.front()}}, second).status, 200);
}

TEST_F(AuthRoutesTest, AppleTokensSignInAndLinkByEmail) {
    registerEmail("lin@example.com", "first-secret", emailCode("lin@example.com"));
    const auto linked = get("/sandbox/apple/token?sub=s1&email=lin%40example.com")["identityToken"];
    const auto answer = post("/api/app/auth/apple", {{"identityToken", linked}});
    EXPECT_EQ(answer["type"], "login");
    EXPECT_EQ(answer.json().at("userInfo").at("legacyLinked"), true);
    const auto fresh = get("/sandbox/apple/token?sub=s2")["identityToken"];
    const auto created = post("/api/app/auth/apple", {{"identityToken", fresh}, {"fullName", "林小满"}});
    EXPECT_EQ(created["type"], "register");
    EXPECT_EQ(created.json().at("userInfo").at("legacyLinked"), false);
    EXPECT_EQ(created.json().at("userInfo").at("username"), "林小满");
    EXPECT_EQ(post("/api/app/auth/google", {{"idToken", fresh}}).status, 401) << "another provider's token";
    now += 660'000;
    EXPECT_EQ(post("/api/app/auth/apple", {{"identityToken", fresh}}).status, 401) << "expired";
}

} // namespace

} // namespace lmp::sandbox
