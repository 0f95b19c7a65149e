#include "core/LoginModel.h"

#include "support/Await.h"
#include "support/FakeKeychain.h"
#include "support/ManualClock.h"
#include "support/StubServer.h"

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Mode = LoginModel::Mode;

namespace {

/// A sheet that ends as the test wants.
class ScriptedApple : public AppleSignInCoordinator {
public:
    Outcome outcome = Credential{u"apple-token"_s, u"小林"_s};
    bool isAvailable() const override { return true; }

protected:
    QCoro::Task<Outcome> present() override { co_return std::as_const(outcome); }
};

} // namespace

class LoginModelTest : public ::testing::Test {
protected:
    LoginModelTest() {
        store.startSignedOut();
        QObject::connect(&model, &LoginModel::noticed, [this](const QString &text) { notices.push_back(text); });
    }
    void TearDown() override { EXPECT_TRUE(await(store.keychainSettled(1h))); }

    static QByteArray signedIn(const QByteArray &more = {}) {
        return R"({"userInfo":{"id":"u1"},"token":"t1")" + more + "}";
    }
    void fill(Mode mode, const LoginModel::Fields &fields) {
        model.setMode(mode);
        model.edit(fields);
    }
    static LoginModel::Fields everything() {
        LoginModel::Fields fields;
        fields.phone = u"138-0013 8000"_s;
        fields.smsCode = u"1234"_s;
        fields.password = u"pw\"你"_s;
        fields.email = u" a@b.c "_s;
        fields.emailCode = u"5678"_s;
        fields.newPassword = u"new"_s;
        return fields;
    }

    StubServer server;
    ManualClock clock;
    FakeKeychain keychain;
    AuthStore store{server.url(u"/api"_s), keychain, clock};
    ScriptedApple apple;
    LoginModel model{store, clock, {.google = nullptr, .apple = &apple}};
    QStringList notices;
};

TEST_F(LoginModelTest, ChecksThePhoneNumber) {
    struct Case {
        QString dialCode, phone, message;
    };
    for (const auto &[dialCode, phone, message] : std::initializer_list<Case>{
             {u"+86"_s, u""_s, u""_s},
             {u"+86"_s, u"abc"_s, u""_s},
             {u"+86"_s, u"138-0013 8000"_s, u""_s},
             {u"+86"_s, u"１３８００１３８０００"_s, u""_s},
             {u"+86"_s, u"138001380001"_s, u"手机号多了 1 位 · 中国大陆号码是 11 位"_s},
             {u"+86"_s, u"1380013800011"_s, u"手机号多了 2 位 · 中国大陆号码是 11 位"_s},
             {u"+86"_s, u"1380013800"_s, u"手机号少了 1 位 · 中国大陆号码是 11 位"_s},
             {u"+86"_s, u"1"_s, u"手机号少了 10 位 · 中国大陆号码是 11 位"_s},
             {u"+1"_s, u"12345"_s, u"手机号位数不够"_s},
             {u"+1"_s, u"123456"_s, u""_s},
             {u"+1"_s, u""_s, u""_s},
         }) {
        LoginModel::Fields fields;
        fields.dialCode = dialCode;
        fields.phone = phone;
        fill(Mode::sms, fields);
        EXPECT_EQ(model.phoneMessage(), message) << phone.toStdString();
        EXPECT_EQ(model.canSendCode(), message.isEmpty() && !model.phoneDigits().isEmpty()) << phone.toStdString();
    }
}

TEST_F(LoginModelTest, SendsWhatEachModeNeeds) {
    struct Case {
        Mode mode;
        bool byEmail;
        QByteArray codePath, codeBody, path, body;
    };
    for (const auto &[mode, byEmail, codePath, codeBody, path, body] : std::initializer_list<Case>{
             {Mode::sms, false, "/api/app/auth/sms", R"({"phone":"13800138000","dialCode":"+86"})",
              "/api/app/auth/sms-login", R"({"phone":"13800138000","code":"1234","dialCode":"+86"})"},
             {Mode::password, false, "", "", "/api/app/auth/login", R"({"phone":"13800138000","password":"pw\"你"})"},
             {Mode::emailSignIn, false, "", "", "/api/app/auth/email-login",
              R"({"email":"a@b.c","password":"pw\"你"})"},
             {Mode::emailRegister, false, "/api/app/auth/email", R"({"email":"a@b.c"})", "/api/app/auth/email-register",
              R"({"email":"a@b.c","password":"pw\"你","code":"5678"})"},
             {Mode::reset, false, "/api/app/auth/reset-code", R"({"phone":"13800138000","dialCode":"+86"})",
              "/api/app/auth/reset", R"({"phone":"13800138000","code":"1234","newPassword":"new"})"},
             {Mode::reset, true, "/api/app/auth/reset-code", R"({"email":"a@b.c"})", "/api/app/auth/reset",
              R"({"email":"a@b.c","code":"5678","newPassword":"new"})"},
         }) {
        server.on("/api/app/auth/", StubServer::reply(200, R"({"ok":true})"));
        server.requests.clear();
        LoginModel fresh(store, clock);
        auto fields = everything();
        fields.resetByEmail = byEmail;
        fresh.setMode(mode);
        fresh.edit(fields);
        EXPECT_EQ(fresh.canSendCode(), !codePath.isEmpty());
        await(fresh.sendCode());
        await(fresh.submit());
        ASSERT_EQ(server.requests.size(), codePath.isEmpty() ? 1u : 2u) << path.constData();
        if (!codePath.isEmpty()) {
            EXPECT_EQ(server.requests[0].path, codePath);
            EXPECT_EQ(server.requests[0].body, codeBody);
        }
        EXPECT_EQ(server.requests.back().path, path);
        EXPECT_EQ(server.requests.back().body, body);
        EXPECT_EQ(server.requests.back().method, "POST");
    }
}

TEST_F(LoginModelTest, SaysHowTheCodeWent) {
    struct Case {
        Mode mode;
        int status;
        QByteArray body;
        QString filled;
        QStringList said;
        QString message;
    };
    const QString sent = u"验证码已发送，请查收"_s;
    const QString auto_ = u"开发环境已自动填入验证码"_s;
    for (const auto &[mode, status, body, filled, said, message] : std::initializer_list<Case>{
             {Mode::sms, 200, R"({"ok":true})", {}, {sent}, {}},
             {Mode::sms, 200, R"({"devCode":""})", {}, {sent}, {}},
             {Mode::sms, 200, R"({"devCode":"0042"})", u"0042"_s, {auto_, sent}, {}},
             {Mode::emailRegister, 200, R"({"devCode":"77"})", u"77"_s, {auto_, sent}, {}},
             {Mode::sms, 429, R"({"error":"slow","reason":"太快了"})", {}, {}, u"太快了"_s},
             {Mode::sms, 429, R"({"reason":""})", {}, {}, u"验证码发送失败"_s},
             {Mode::sms, 502, "", {}, {}, u"请求失败（502）"_s},
         }) {
        notices.clear();
        server.on("/api/app/auth/", StubServer::reply(status, body));
        LoginModel fresh(store, clock);
        QObject::connect(&fresh, &LoginModel::noticed, [&](const QString &text) { notices.push_back(text); });
        LoginModel::Fields fields;
        fields.phone = u"13800138000"_s;
        fields.email = u"a@b.c"_s;
        fresh.setMode(mode);
        fresh.edit(fields);
        auto sending = fresh.sendCode();
        EXPECT_TRUE(fresh.isSending());
        EXPECT_FALSE(fresh.canSendCode());
        await(std::move(sending));
        EXPECT_FALSE(fresh.isSending());
        EXPECT_EQ(mode == Mode::sms ? fresh.fields().smsCode : fresh.fields().emailCode, filled);
        EXPECT_EQ(notices, said) << body.constData();
        EXPECT_EQ(fresh.message(), message) << body.constData();
        EXPECT_EQ(fresh.resendIn(), status == 200 ? 60 : 0);
        EXPECT_EQ(fresh.canSendCode(), status != 200);
    }
}

TEST_F(LoginModelTest, MaySendAgainAfterAMinute) {
    server.on("/api/app/auth/sms", StubServer::reply(200, "{}"));
    fill(Mode::sms, everything());
    await(model.sendCode());
    for (int second = 0; second < 59; ++second) {
        clock.advance(1s);
        settle();
    }
    EXPECT_EQ(model.resendIn(), 1);
    await(model.sendCode());
    EXPECT_EQ(server.requests.size(), 1u);
    // Who mistyped the number does not wait for the right one, and whoever waits does so in every mode.
    auto corrected = everything();
    corrected.phone = u"13800138001"_s;
    fill(Mode::sms, corrected);
    EXPECT_EQ(model.resendIn(), 0);
    EXPECT_TRUE(model.canSendCode());
    fill(Mode::reset, everything());
    EXPECT_FALSE(model.canSendCode());
    fill(Mode::sms, everything());
    clock.advance(1s);
    settle();
    EXPECT_EQ(model.resendIn(), 0);
    EXPECT_TRUE(model.canSendCode());
}

TEST_F(LoginModelTest, SaysWhySigningInFailed) {
    struct Case {
        Mode mode;
        int status;
        QByteArray body;
        QString message;
    };
    for (const auto &[mode, status, body, message] : std::initializer_list<Case>{
             {Mode::sms, 401, R"({"reason":"验证码错了"})", u"验证码错了"_s},
             {Mode::sms, 401, R"({"reason":""})", u"验证码不对 · 还能试"_s},
             {Mode::emailRegister, 409, R"({"error":"email_taken"})", u"email_taken"_s},
             {Mode::reset, 400, R"({"reason":""})", u"重设失败，稍后再试"_s},
             {Mode::reset, 400, R"({"reason":"过期了"})", u"过期了"_s},
             {Mode::reset, 200, R"({"ok":false})", u"重设失败，稍后再试"_s},
         }) {
        server.on("/api/app/auth/", StubServer::reply(status, body));
        fill(mode, everything());
        await(model.submit());
        EXPECT_EQ(model.message(), message);
        EXPECT_FALSE(model.isSubmitting());
        EXPECT_EQ(store.phase(), AuthStore::Phase::signedOut);
    }
}

TEST_F(LoginModelTest, ResetFillsThePassword) {
    server.on("/api/app/auth/reset", StubServer::reply(200, "{}"));
    fill(Mode::reset, everything());
    await(model.submit());
    EXPECT_EQ(model.fields().password, u"new"_s);
    EXPECT_EQ(notices, QStringList{u"密码已重设，已填进密码框——点登录即可。"_s});
    EXPECT_EQ(store.phase(), AuthStore::Phase::signedOut);
}

TEST_F(LoginModelTest, SignsInOnceAndDropsLateAnswers) {
    QPointer<QTcpSocket> held;
    server.on("/api/app/auth/sms-login", [&](const StubServer::Request &, QTcpSocket &socket) { held = &socket; });
    fill(Mode::sms, everything());
    auto first = model.submit();
    await(model.submit());
    ASSERT_TRUE(eventually([&] { return held; }));
    EXPECT_EQ(server.requests.size(), 1u);
    store.signIn({{.id = u"other"_s}, u"t2"_s, {}});
    held->write(StubServer::message(200, signedIn()));
    await(std::move(first));
    EXPECT_EQ(store.token(), u"t2"_s);
    EXPECT_FALSE(model.isSubmitting());

    server.on("/api/app/auth/sms-login", StubServer::reply(200, signedIn()));
    await(model.submit());
    EXPECT_EQ(store.token(), u"t1"_s);
    EXPECT_EQ(store.phase(), AuthStore::Phase::signedIn);
}

TEST_F(LoginModelTest, ProvidersAndNewAccounts) {
    struct Case {
        QByteArray more; ///< of the answer; empty refuses
        bool notice;
    };
    for (const auto &[more, notice] : std::initializer_list<Case>{
             {R"(,"type":"login")", false},
             {R"(,"type":"register")", true},
             {R"(,"type":"register","userInfo":{"id":"u","legacyLinked":true})", false},
             {R"(,"type":"register","userInfo":{"id":"u","legacyLinked":false})", true},
         }) {
        server.on("/api/app/auth/apple", StubServer::reply(200, R"({"token":"t","userInfo":{"id":"u"})" + more + "}"));
        LoginModel fresh(store, clock, {.google = nullptr, .apple = &apple});
        await(fresh.signInWithApple());
        EXPECT_EQ(fresh.newAccountNotice().has_value(), notice) << more.constData();
        if (!notice)
            continue;
        EXPECT_EQ(fresh.newAccountNotice()->title, u"登录新建了一个账号"_s);
        EXPECT_EQ(fresh.newAccountNotice()->close, u"关掉这条提示"_s);
        fresh.closeNewAccountNotice();
        EXPECT_FALSE(fresh.newAccountNotice());
    }
    EXPECT_EQ(server.requests.back().body, R"({"identityToken":"apple-token","fullName":"小林"})");
    EXPECT_TRUE(await(store.keychainSettled(1h)));
}

TEST_F(LoginModelTest, ProviderThatGivesNothing) {
    const QString calm = u"没关系，换个方式或再试一次都行"_s;
    apple.outcome = AppleSignInCoordinator::Credential{};
    EXPECT_EQ(await(apple.signIn()).error().reason, u"未取得 Apple 身份令牌"_s);
    await(model.signInWithApple());
    EXPECT_EQ(model.message(), calm);
    apple.outcome = std::unexpected(WebAuthFailure{WebAuthFailure::Kind::Cancelled, u"x"_s});
    await(model.signInWithApple());
    EXPECT_EQ(model.message(), calm);
    EXPECT_TRUE(server.requests.empty());
    EXPECT_FALSE(model.offersGoogle());

    apple.outcome = AppleSignInCoordinator::Credential{u"t"_s, {}};
    server.on("/api/app/auth/apple", StubServer::reply(403, R"({"reason":"停用了"})"));
    await(model.signInWithApple());
    EXPECT_EQ(model.message(), u"停用了"_s);
    EXPECT_FALSE(AppleSignInCoordinator().isAvailable());
}

TEST_F(LoginModelTest, MayGoWhileAllIsUnderWay) {
    server.on("/api/app/auth/", [](const StubServer::Request &, QTcpSocket &socket) {
        QTimer::singleShot(0, &socket, [&socket] { socket.write(StubServer::message(200, "{}")); });
    });
    auto going = std::make_unique<LoginModel>(store, clock);
    going->edit(everything());
    auto sending = going->sendCode();
    auto submitting = going->submit();
    going.reset();
    await(std::move(sending));
    await(std::move(submitting));
    EXPECT_EQ(store.phase(), AuthStore::Phase::signedOut);
}

} // namespace lmp
