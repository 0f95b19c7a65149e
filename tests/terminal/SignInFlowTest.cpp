#include "core/Detach.h"
#include "core/GuestTrial.h"
#include "core/HTTPCall.h"
#include "core/HandleSetup.h"
#include "core/LoginModel.h"
#include "core/Telemetry.h"

#include "support/FakeKeychain.h"
#include "support/ManualClock.h"
#include "support/MemorySettings.h"
#include "support/SandboxFixture.h"

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Mode = LoginModel::Mode;

namespace {

/// A browser whose person picks `email` at the provider, and that follows the way back.
class PickingBrowser : public ExternalOpener {
public:
    QString email;
    bool open(const QUrl &url) override {
        QUrl picked(url);
        picked.setQuery(url.query(QUrl::FullyEncoded) + u"&auto="_s + email, QUrl::StrictMode);
        detach(follow(picked), "PickingBrowser");
        return true;
    }

private:
    static QCoro::Task<> follow(QUrl url) {
        const auto page = co_await HTTPCall::run({"GET", url, {}, {}}, URLSession::normal(), 100'000, {});
        EXPECT_EQ(page.status, 200) << page.body.toStdString();
    }
};

} // namespace

/// Signing in as the screens and the terminal do it, against the sandbox as a process.
class SignInFlowTest : public SandboxFixture {
protected:
    void SetUp() override {
        SandboxFixture::SetUp();
        store = std::make_unique<AuthStore>(Site::at(m_site.toString()).api, keychain, clock);
        store->startSignedOut();
    }
    void TearDown() override {
        EXPECT_TRUE(await(store->keychainSettled(1h)));
        store.reset();
        SandboxFixture::TearDown();
    }
    void signInNew() {
        LoginModel model(*store, clock);
        LoginModel::Fields fields;
        fields.phone = u"13900139000"_s;
        model.edit(fields);
        await(model.sendCode());
        await(model.submit());
        expectSignedIn(model);
    }
    void expectSignedIn(const LoginModel &model) {
        EXPECT_EQ(store->phase(), AuthStore::Phase::signedIn) << model.message().toStdString();
    }

    ManualClock clock;
    FakeKeychain keychain;
    std::unique_ptr<AuthStore> store;
};

TEST_F(SignInFlowTest, PhoneThenRestart) {
    LoginModel model(*store, clock);
    LoginModel::Fields fields;
    fields.phone = u"138 0013 8000"_s;
    model.edit(fields);
    await(model.sendCode());
    ASSERT_FALSE(model.fields().smsCode.isEmpty()) << model.message().toStdString();
    await(model.submit());
    expectSignedIn(model);
    EXPECT_TRUE(await(store->keychainSettled(1h)));

    AuthStore restarted(store->api().base, keychain, clock);
    restarted.restore();
    await(restarted.settled());
    EXPECT_EQ(restarted.phase(), AuthStore::Phase::signedIn);
    EXPECT_EQ(restarted.user(), store->user());
}

TEST_F(SignInFlowTest, EmailRegisterResetAndSignIn) {
    LoginModel model(*store, clock);
    LoginModel::Fields fields;
    fields.email = u"lin@example.com"_s;
    fields.password = u"first password"_s;
    model.setMode(Mode::emailRegister);
    model.edit(fields);
    await(model.sendCode());
    await(model.submit());
    expectSignedIn(model);
    store->signOut();

    LoginModel again(*store, clock);
    fields.resetByEmail = true;
    fields.newPassword = u"second password"_s;
    again.setMode(Mode::reset);
    again.edit(fields);
    await(again.sendCode());
    await(again.submit());
    EXPECT_EQ(again.fields().password, u"second password"_s) << again.message().toStdString();
    again.setMode(Mode::emailSignIn);
    await(again.submit());
    expectSignedIn(again);
    store->signOut();

    again.edit(fields);
    await(again.submit());
    EXPECT_EQ(store->phase(), AuthStore::Phase::signedOut) << "the old password is no longer one";
    EXPECT_FALSE(again.message().isEmpty());
}

TEST_F(SignInFlowTest, GoogleThroughTheBrowser) {
    PickingBrowser browser;
    browser.email = u"lin@example.com"_s;
    WebAuthPresenter presenter(browser, clock);
    GoogleSignIn google(GoogleProvider::sandbox(Site::at(m_site.toString())), presenter);
    std::optional<UserInfo> first;
    for (const bool isNew : {true, false}) {
        LoginModel model(*store, clock, {.google = &google, .apple = nullptr});
        await(model.signInWithGoogle());
        expectSignedIn(model);
        EXPECT_EQ(model.newAccountNotice().has_value(), isNew);
        if (first)
            EXPECT_EQ(store->user()->id, first->id);
        first = store->user();
        store->signOut();
    }
}

TEST_F(SignInFlowTest, GuestHandleAndTelemetry) {
    GuestTrial trial(store->service());
    await(trial.open());
    ASSERT_TRUE(trial.isOpen()) << trial.message().toStdString();
    while (!trial.isExhausted()) {
        const auto before = trial.turns().size();
        await(trial.send(u"你好"_s));
        ASSERT_EQ(trial.turns().size(), before + 1) << trial.message().toStdString();
        ASSERT_FALSE(trial.turns().last().reply.isEmpty());
    }

    MemorySettings settings;
    Telemetry telemetry({.apiBase = store->api().base, .appVersion = u"1"_s, .viewport = u"terminal"_s}, settings,
                        clock);
    telemetry.setConsentProduct(true);
    Telemetry::install(&telemetry);
    signInNew();
    HandleSetup setup(store->service(), clock);
    for (const auto &[input, available] :
         {std::pair(u"lin_x1"_s, true), std::pair(u"小 林&x=1"_s, false), std::pair(u"lin_x1"_s, true)}) {
        setup.setInput(input);
        settle();
        clock.advance(250ms);
        ASSERT_TRUE(eventually([&] { return !setup.isChecking(); }));
        ASSERT_TRUE(setup.check()) << setup.message().toStdString();
        EXPECT_EQ(setup.check()->available, available) << input.toStdString();
    }
    await(setup.save());
    EXPECT_EQ(setup.current(), u"lin_x1"_s) << setup.message().toStdString();
    await(setup.loadSuggestions());
    EXPECT_EQ(setup.current(), u"lin_x1"_s);

    await(telemetry.flushForExit(1h));
    EXPECT_TRUE(telemetry.queue().isEmpty());
    std::vector<std::string> names;
    const auto kept = look(u"/sandbox/telemetry"_s);
    for (const auto &event : kept.at("events").as_array())
        names.emplace_back(event.at("eventName").as_string());
    EXPECT_EQ(names, (std::vector<std::string>{"engagement.session.started", "identity.principal.registered"}));
}

} // namespace lmp
