#include "GoogleProvider.h"
#include "SandboxCrypto.h"
#include "sandbox/SandboxFixture.h"

namespace lmp::sandbox {

namespace {

const std::string verifier = "a-verifier-that-is-long-enough-for-the-rules-0123456789";

class GoogleProviderTest : public SandboxFixture {
protected:
    void SetUp() override { start(); }

    std::string query(const std::string &redirect = "http://127.0.0.1:5000/back",
                      const std::string &client = "lumenpair-desktop") const {
        return "client_id=" + client + "&redirect_uri=" + percentEncoded(redirect) +
               "&response_type=code&scope=openid%20email&state=s%2F1&code_challenge=" + pkceChallenge(verifier) +
               "&code_challenge_method=S256&nonce=n1";
    }

    std::string code(const std::string &email = "lin@example.com") const {
        const auto answer = get("/sandbox/google/authorize?" + query() + "&auto=" + percentEncoded(email));
        const auto location = answer.headers.find("Location");
        return location == answer.headers.end()
                   ? std::string()
                   : parseFields(location->second.substr(location->second.find('?') + 1), false).at("code");
    }

    HttpAnswer exchange(const std::string &grant, const std::string &proof = verifier,
                        const std::string &redirect = "http://127.0.0.1:5000/back") const {
        return wrap(client().Post("/sandbox/google/token", httplib::Params{{"grant_type", "authorization_code"},
                                                                           {"code", grant},
                                                                           {"client_id", "lumenpair-desktop"},
                                                                           {"redirect_uri", redirect},
                                                                           {"code_verifier", proof}}));
    }
};

TEST_F(GoogleProviderTest, TheWholeFlowEndsInAStableAccount) {
    std::string user;
    for (const auto *type : {"register", "login"}) {
        const auto token = exchange(code());
        ASSERT_EQ(token.status, 200) << token.text;
        const auto answer = post("/api/app/auth/google", {{"idToken", token["id_token"]}, {"nonce", "n1"}});
        EXPECT_EQ(answer["type"], type);
        const std::string id(answer.json().at("userInfo").at("id").as_string());
        EXPECT_TRUE(user.empty() || user == id);
        user = id;
        EXPECT_EQ(post("/api/app/auth/google", {{"idToken", token["id_token"]}, {"nonce", "n2"}}).status, 401);
    }
}

TEST_F(GoogleProviderTest, CodesAreBurntByTheFirstUseRightOrWrong) {
    const auto burnt = code();
    EXPECT_EQ(exchange(burnt, "another-verifier")["error"], "invalid_grant");
    EXPECT_EQ(exchange(burnt)["error"], "invalid_grant");
    const auto used = code();
    EXPECT_EQ(exchange(used).status, 200);
    EXPECT_EQ(exchange(used)["error"], "invalid_grant");
    EXPECT_EQ(exchange(code(), verifier, "http://127.0.0.1:5001/back")["error"], "invalid_grant");
    const auto late = code();
    now += 60'000;
    EXPECT_EQ(exchange(late)["error"], "invalid_grant");
}

TEST_F(GoogleProviderTest, IdTokensExpireAndMayNotBeTamperedWith) {
    const auto token = exchange(code())["id_token"];
    auto forged = token;
    forged[token.find('.') + 5] = forged[token.find('.') + 5] == 'A' ? 'B' : 'A';
    EXPECT_EQ(post("/api/app/auth/google", {{"idToken", forged}}).status, 401);
    EXPECT_EQ(post("/api/app/auth/google", {{"idToken", "a.b"}}).status, 401);
    const auto foreign =
        signToken({{"iss", "lumenpair-sandbox-google"}, {"sub", "g"}, {"exp", 4'000'000'000}}, "guess");
    EXPECT_EQ(post("/api/app/auth/google", {{"idToken", foreign}}).status, 401);
    now += 600'000;
    EXPECT_EQ(post("/api/app/auth/google", {{"idToken", token}})["error"], "google_token_invalid");
}

TEST_F(GoogleProviderTest, ThePageAsksAndSendsBackTheDecision) {
    const auto page = get("/sandbox/google/authorize?" + query() + "&extra=%3Cscript%3E");
    EXPECT_EQ(page.status, 200);
    EXPECT_NE(page.text.find("允许登录"), std::string::npos);
    const auto decide = [&](const std::string &decision) {
        return wrap(client().Post("/sandbox/google/authorize",
                                  query() + "&email=a%2Bb%40example.com&decision=" + decision,
                                  "application/x-www-form-urlencoded"));
    };
    const auto denied = decide("deny");
    EXPECT_EQ(denied.status, 302);
    const auto location = denied.headers.find("Location")->second;
    EXPECT_TRUE(location.starts_with("http://127.0.0.1:5000/back?")) << location;
    const auto fields = parseFields(location.substr(location.find('?') + 1), false);
    EXPECT_EQ(fields, (FormFields{{"error", "access_denied"}, {"state", "s/1"}}));
    EXPECT_TRUE(decide("allow").headers.find("Location")->second.starts_with("http://127.0.0.1:5000/back?code="));
}

TEST_F(GoogleProviderTest, OnlyLoopbackAddressesAndKnownClientsAreSentBack) {
    for (const auto *good : {"http://127.0.0.1:1/", "http://[::1]:65535/x?y=1", "http://127.0.0.1:80"})
        EXPECT_TRUE(GoogleProvider::isLoopback(good)) << good;
    for (const auto *bad : {"https://127.0.0.1:80/", "http://127.0.0.1/", "http://127.0.0.1:80@evil.com/",
                            "http://127.0.0.1.evil.com:80/", "http://127.0.0.1:0/", "http://127.0.0.1:65536/",
                            "http://localhost:80/", "http://127.0.0.1:80/#x", "http://127.0.0.1:80/\r\nX: y", ""})
        EXPECT_FALSE(GoogleProvider::isLoopback(bad)) << bad;
    for (const auto &refused : {query("http://evil.com/back"), query("http://127.0.0.1:5000/", "stranger")}) {
        const auto answer = get("/sandbox/google/authorize?" + refused + "&auto=a%40b.cn");
        EXPECT_EQ(answer.status, 400);
        EXPECT_EQ(answer.headers.count("Location"), 0u);
    }
}

} // namespace

} // namespace lmp::sandbox
