#include "screens/gallery/AccountScenes.h"

#include "core/AuthAnswers.h"
#include "core/GuestTrialRecords.h"
#include "core/HandleRecords.h"
#include "platform/SystemClock.h"
#include "platform/SystemOpener.h"
#include "screens/account/CrisisResourcesModel.h"
#include "screens/account/SessionModel.h"
#include "screens/gallery/GalleryFixtures.h"
#include "screens/gallery/GalleryKeychain.h"
#include "screens/shell/WindowScene.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QQuickItem>
#include <QUrlQuery>

namespace lmp {

using namespace Qt::StringLiterals;
using Fixtures = GalleryFixtures;

namespace {

SignInModel &form(GalleryStage &stage) {
    return *stage.scene().session()->signIn();
}

GuestModel &guest(GalleryStage &stage) {
    return *stage.scene().session()->guest();
}

HandleModel &handle(GalleryStage &stage) {
    return *stage.scene().session()->handle();
}

/// The sign-in screen with something done to its form.
std::function<void(GalleryStage &)> filled(SignInModel::Mode mode, std::function<void(SignInModel &)> fill = {}) {
    return [mode, fill = std::move(fill)](GalleryStage &stage) {
        Fixtures::toSignIn(stage);
        stage.then([&stage, mode, fill] {
            form(stage).setMode(mode);
            if (fill)
                fill(form(stage));
        });
    };
}

void withPhone(SignInModel &form) {
    form.setPhone(u"138 0000 6666"_s);
}

void toTrial(GalleryStage &stage) {
    Fixtures::toSignIn(stage);
    stage.until(u"the sign-in form"_s, [&stage] { return stage.visibleItem(u"SignedOutView"_s) != nullptr; });
    stage.then([&stage] { stage.visibleItem(u"SignedOutView"_s)->setProperty("trying", true); });
}

void say(GalleryStage &stage, const QString &text) {
    stage.until(u"the trial"_s, [&stage] { return guest(stage).isOpen(); });
    stage.then([&stage, text] {
        guest(stage).setInput(text);
        guest(stage).send();
    });
}

void offerTrial(GalleryStage &stage, qint64 rounds, qint64 roundsAfter) {
    stage.service().reply(
        u"/api/app/guest/session"_s,
        SessionResp{{.token = u"guest"_s, .roundsLeft = rounds, .note = u"试聊的内容不会留下，也不会变成记忆。"_s}});
    stage.service().reply(u"/api/app/guest/chat"_s,
                          ChatResp{.reply = u"可以先从一件小事说起：今天有没有哪一刻，让你想多待一会儿？"_s,
                                   .stardust = u"你刚才提到了傍晚。"_s,
                                   .roundsLeft = roundsAfter});
}

void launchWaiting(GalleryStage &stage) {
    stage.service().stall(u"/api/app/auth/me"_s);
    stage.service().answer(u"/api/telemetry/events"_s, {.body = "{}"});
    stage.service().stall(u"/api/app/capabilities"_s);
    stage.service().answer(u"/downloads/desktop/mac/latest.json"_s, {.status = 404});
    stage.run(u"gallery"_s);
    stage.until(u"the words that say what is waited for"_s,
                [&stage] { return stage.visibleItem(u"LMPBusy"_s) != nullptr; });
}

void launchVerificationFailed(GalleryStage &stage) {
    Fixtures::serve(stage.service());
    stage.service().refuse(u"/api/app/auth/me"_s, 503, u"unavailable"_s, u"服务暂时不可用，请稍后再试。"_s);
    stage.run(u"gallery"_s);
    stage.until(u"the third attempt"_s, [&stage] { return stage.scene().session()->verificationFailed(); });
}

void launchKeychain(GalleryStage &stage) {
    auto &clock = stage.make<SystemClock>();
    auto &opener = stage.make<SystemOpener>();
    auto &keychain = stage.make<GalleryKeychain>();
    auto &auth = stage.make<AuthStore>(QUrl(stage.service().site() + u"/api"_s), keychain, clock);
    auto &session = stage.make<SessionModel>(AccountServices{.auth = auth, .clock = clock, .makeLogin = [&] {
                                                                 return std::make_unique<LoginModel>(auth, clock);
                                                             }});
    auto &crisis = stage.make<CrisisResourcesModel>(auth.api(), opener);
    auth.restore();
    stage.show(u"Account/LaunchView"_s,
               {{u"session"_s, QVariant::fromValue(&session)}, {u"resources"_s, QVariant::fromValue(&crisis)}});
    stage.until(u"the keychain to take its time"_s, [&session] { return session.waitingOnKeychain(); });
}

/// Signed in for the first time, up to `wanted`.
std::function<void(GalleryStage &)> stageOf(RootView::Stage wanted, std::function<void(GalleryStage &)> more = {}) {
    return [wanted, more = std::move(more)](GalleryStage &stage) {
        Fixtures::serve(stage.service());
        UserInfo person = Fixtures::person();
        person.handle.reset();
        stage.service().reply(u"/api/app/auth/me"_s, MeResponse{person});
        stage.service().reply(
            u"/api/app/handle/suggest"_s,
            SuggestResp{.suggestions = {u"linjianwanfeng"_s, u"wanfeng_lin"_s, u"lin.evening"_s}, .current = {}});
        stage.run(u"gallery"_s);
        stage.until(u"the stage"_s, [&stage, wanted] {
            auto *root = stage.scene().rootView();
            if (root && root->stage() == RootView::Stage::Migration && wanted != RootView::Stage::Migration)
                root->finishMigrationNotice();
            if (root && root->stage() == RootView::Stage::Onboarding && wanted != RootView::Stage::Onboarding)
                root->finishOnboarding();
            return root && root->stage() == wanted;
        });
        if (more)
            more(stage);
    };
}

/// The provider's page, as somebody with a new account uses it.
void pickAtProvider(GalleryStage &stage) {
    const QUrlQuery asked(QUrl(form(stage).providerLink()));
    const auto base64 = QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals;
    const QByteArray claims = R"({"nonce":")" + asked.queryItemValue(u"nonce"_s).toLatin1() + R"("})";
    stage.service().answer(u"/sandbox/google/token"_s,
                           {.body = R"({"id_token":"head.)" + claims.toBase64(base64) + R"(.signature"})"});
    stage.service().reply(u"/api/app/auth/google"_s,
                          AuthResponse{.userInfo = Fixtures::person(), .token = u"gallery"_s, .type = u"register"_s});
    QUrl back(asked.queryItemValue(u"redirect_uri"_s, QUrl::FullyDecoded));
    back.setQuery(QUrlQuery{{u"code"_s, u"c"_s}, {u"state"_s, asked.queryItemValue(u"state"_s)}});
    stage.make<QNetworkAccessManager>().get(QNetworkRequest(back));
}

void toAccount(GalleryStage &stage) {
    Fixtures::serve(stage.service(), 5);
    stage.service().reply(
        u"/api/app/handle/suggest"_s,
        SuggestResp{.suggestions = {u"linjianwanfeng"_s, u"wanfeng_lin"_s, u"lin.evening"_s}, .current = {}});
    Fixtures::toShell(stage);
    stage.then([&stage] { stage.scene().navigation()->openSection(WindowNavigation::Section::Account); });
}

/// The sheet for another handle, with `input` in it that can be had.
void handleSheet(GalleryStage &stage, const QString &input) {
    toAccount(stage);
    stage.service().reply(
        u"/api/app/handle/check"_s,
        CheckResp{.available = true, .reason = {}, .handle = input, .twinHandle = input + u".twin"_s});
    stage.press(u"换一个"_s);
    stage.until(u"the suggestions"_s, [&stage] { return !handle(stage).suggestions().isEmpty(); });
    if (input.isEmpty())
        return;
    stage.type(input);
    stage.until(u"the check"_s, [&stage] { return handle(stage).isAvailable(); });
}

} // namespace

QList<GalleryScene> AccountScenes::launching() {
    return {{u"launch"_s, launchWaiting},
            {u"launch-keychain"_s, launchKeychain},
            {u"launch-verification-failed"_s, launchVerificationFailed}};
}

QList<GalleryScene> AccountScenes::signingIn() {
    using enum SignInModel::Mode;
    const auto withoutKeychain = [](GalleryStage &stage) {
        filled(Sms, [&stage](SignInModel &form) {
            stage.service().reply(u"/api/app/auth/sms-login"_s,
                                  AuthResponse{.userInfo = Fixtures::person(), .token = u"gallery"_s, .type = {}});
            withPhone(form);
            form.setCode(u"428613"_s);
            form.submit();
        })(stage);
        stage.until(u"the notice"_s, [&stage] { return !stage.scene().session()->notice().isEmpty(); });
        Fixtures::passBy(stage);
        stage.then([&stage] { stage.scene().navigation()->setTab(WindowNavigation::Tab::Me); });
    };
    const auto codeSent = [](GalleryStage &stage) {
        filled(Sms, [&stage](SignInModel &form) {
            stage.service().reply(u"/api/app/auth/sms"_s, SendCodeResponse{.ok = true, .devCode = u"428613"_s});
            withPhone(form);
            form.sendCode();
        })(stage);
        stage.until(u"the code"_s, [&stage] { return !form(stage).codeNotice().isEmpty(); });
    };
    const auto refused = [](GalleryStage &stage) {
        filled(Sms, [&stage](SignInModel &form) {
            stage.service().refuse(u"/api/app/auth/sms-login"_s, 400, u"bad_code"_s,
                                   u"验证码不对，或已经过期。可以重新获取一个。"_s);
            withPhone(form);
            form.setCode(u"000000"_s);
            form.submit();
        })(stage);
        stage.until(u"the refusal"_s, [&stage] { return !form(stage).message().isEmpty(); });
    };
    const auto codeRefused = [](GalleryStage &stage) {
        filled(EmailRegister, [&stage](SignInModel &form) {
            stage.service().refuse(u"/api/app/auth/email"_s, 429, u"too_often"_s, u"发得太频繁了，请一分钟后再试。"_s);
            form.setEmail(u"someone@example.com"_s);
            form.sendCode();
        })(stage);
        stage.until(u"the refusal"_s, [&stage] { return !form(stage).codeMessage().isEmpty(); });
    };
    const auto submitting = [](GalleryStage &stage) {
        stage.service().stall(u"/api/app/auth/login"_s);
        filled(Password, [](SignInModel &form) {
            withPhone(form);
            form.setPassword(u"不会被画出来"_s);
            form.submit();
        })(stage);
    };
    const auto provider = [](GalleryStage &stage) {
        filled(Sms, [](SignInModel &form) { form.signInWithGoogle(); })(stage);
        stage.until(u"the provider's page"_s, [&stage] { return !form(stage).providerText().isEmpty(); });
    };
    return {{u"sign-in"_s, filled(Sms)},
            {u"signed-in-without-keychain"_s, withoutKeychain},
            {u"sign-in-missing"_s, filled(Sms, [](SignInModel &form) { form.submit(); })},
            {u"sign-in-wrong-phone"_s, filled(Sms, [](SignInModel &form) { form.setPhone(u"12345"_s); })},
            {u"sign-in-code-sent"_s, codeSent},
            {u"sign-in-refused"_s, refused},
            {u"sign-in-provider"_s, provider},
            {u"sign-in-password"_s, filled(Password, withPhone)},
            {u"sign-in-submitting"_s, submitting},
            {u"sign-in-email"_s, filled(EmailSignIn)},
            {u"sign-in-register"_s, filled(EmailRegister)},
            {u"sign-in-register-refused"_s, codeRefused},
            {u"sign-in-reset"_s, filled(Reset)},
            {u"sign-in-smallest-window"_s, filled(EmailRegister), {920, 600}}};
}

QList<GalleryScene> AccountScenes::trying() {
    const auto fresh = [](GalleryStage &stage) {
        offerTrial(stage, 5, 4);
        toTrial(stage);
        stage.until(u"the trial"_s, [&stage] { return guest(stage).isOpen(); });
    };
    const auto spoken = [](GalleryStage &stage) {
        offerTrial(stage, 5, 3);
        toTrial(stage);
        say(stage, u"不知道说什么。"_s);
        stage.until(u"the answer"_s, [&stage] { return guest(stage).turns()->rowCount() > 0; });
    };
    const auto waiting = [](GalleryStage &stage) {
        offerTrial(stage, 5, 4);
        stage.service().stall(u"/api/app/guest/chat"_s);
        toTrial(stage);
        say(stage, u"在吗？"_s);
        stage.until(u"the round"_s, [&stage] { return guest(stage).isSending(); });
    };
    const auto exhausted = [](GalleryStage &stage) {
        offerTrial(stage, 1, 0);
        toTrial(stage);
        say(stage, u"那再见。"_s);
        stage.until(u"the last round"_s, [&stage] { return guest(stage).isExhausted(); });
    };
    const auto failed = [](GalleryStage &stage) {
        offerTrial(stage, 5, 4);
        stage.service().refuse(u"/api/app/guest/chat"_s, 502, u"upstream_failed"_s, u"这一轮没有接通，请再试一次。"_s);
        toTrial(stage);
        say(stage, u"今天有点累，不知道从哪说起。"_s);
        stage.until(u"the failure"_s, [&stage] { return !guest(stage).message().isEmpty(); });
    };
    const auto closed = [](GalleryStage &stage) {
        stage.service().refuse(u"/api/app/guest/session"_s, 429, u"busy"_s, u"现在试聊的人太多了，请稍后再来。"_s);
        toTrial(stage);
        stage.until(u"the refusal"_s, [&stage] { return !guest(stage).message().isEmpty(); });
    };
    return {{u"guest-fresh"_s, fresh},         {u"guest-spoken"_s, spoken}, {u"guest-waiting"_s, waiting},
            {u"guest-exhausted"_s, exhausted}, {u"guest-failed"_s, failed}, {u"guest-closed"_s, closed}};
}

QList<GalleryScene> AccountScenes::firstTime() {
    using enum RootView::Stage;
    const auto step = [](int number) {
        return [number](GalleryStage &stage) {
            stage.until(u"the first step"_s, [&stage] { return stage.visibleItem(u"OnboardingView"_s) != nullptr; });
            stage.then([&stage, number] { stage.visibleItem(u"OnboardingView"_s)->setProperty("step", number); });
        };
    };
    const auto taken = [](GalleryStage &stage) {
        stage.service().reply(
            u"/api/app/handle/check"_s,
            CheckResp{.available = false, .reason = u"这个名字已经有人用了。"_s, .handle = {}, .twinHandle = {}});
        stage.until(u"the form"_s, [&stage] { return stage.visibleItem(u"HandleForm"_s) != nullptr; });
        stage.then([&stage] { handle(stage).setInput(u"linjian"_s); });
        stage.until(u"the check"_s, [&stage] { return !handle(stage).errorText().isEmpty(); });
    };
    const auto available = [](GalleryStage &stage) {
        stage.service().reply(u"/api/app/handle/check"_s, CheckResp{.available = true,
                                                                    .reason = {},
                                                                    .handle = u"wanfeng_lin"_s,
                                                                    .twinHandle = u"wanfeng_lin.twin"_s});
        stage.until(u"the form"_s, [&stage] { return stage.visibleItem(u"HandleForm"_s) != nullptr; });
        stage.then([&stage] { handle(stage).setInput(u"wanfeng_lin"_s); });
        stage.until(u"the check"_s, [&stage] { return handle(stage).isAvailable(); });
    };
    const auto notSaved = [available](GalleryStage &stage) {
        stage.service().refuse(u"/api/app/handle"_s, 500, u"internal"_s, u"没有存上，请再试一次。"_s);
        available(stage);
        stage.then([&stage] { handle(stage).save(); });
        stage.until(u"the refusal"_s, [&stage] { return !handle(stage).errorText().isEmpty(); });
    };
    const auto privacy = [](GalleryStage &stage) {
        stage.then([&stage] { stage.scene().rootView()->setShowPrivacyFromNotice(true); });
    };
    return {{u"migration"_s, stageOf(Migration)},
            {u"migration-privacy"_s, stageOf(Migration, privacy)},
            {u"onboarding-1"_s, stageOf(Onboarding)},
            {u"onboarding-2"_s, stageOf(Onboarding, step(1))},
            {u"onboarding-3"_s, stageOf(Onboarding, step(2))},
            {u"handle"_s, stageOf(HandleSetup)},
            {u"handle-taken"_s, stageOf(HandleSetup, taken)},
            {u"handle-available"_s, stageOf(HandleSetup, available)},
            {u"handle-not-saved"_s, stageOf(HandleSetup, notSaved)}};
}

QList<GalleryScene> AccountScenes::signedIn() {
    const auto newAccount = [](GalleryStage &stage) {
        filled(SignInModel::Mode::Sms, [](SignInModel &form) { form.signInWithGoogle(); })(stage);
        stage.until(u"the provider's page"_s, [&stage] { return !form(stage).providerLink().isEmpty(); });
        stage.then([&stage] { pickAtProvider(stage); });
        Fixtures::passBy(stage);
        stage.until(u"the notice"_s, [&stage] { return stage.visibleItem(u"NewAccountNotice"_s) != nullptr; });
    };
    const auto saved = [](GalleryStage &stage) {
        handleSheet(stage, u"wanfeng_lin"_s);
        stage.then([&stage] {
            stage.service().answer(u"/api/app/handle"_s,
                                   {.body = R"({"handle":"wanfeng_lin","note":"一年可以改一次。"})"});
        });
        stage.press(u"保存"_s);
        stage.until(u"the answer"_s, [&stage] { return !handle(stage).savedText().isEmpty(); });
    };
    const auto discarding = [](GalleryStage &stage) {
        handleSheet(stage, u"wanfeng_lin"_s);
        stage.press(u"取消"_s);
        stage.until(u"the question"_s, [&stage] { return stage.control(u"继续填写"_s) != nullptr; });
    };
    const auto signingOut = [](GalleryStage &stage) {
        toAccount(stage);
        stage.press(u"退出登录"_s);
    };
    return {{u"account-new"_s, newAccount},
            {u"account-handle"_s,
             [](GalleryStage &stage) {
                 handleSheet(stage, {});
             }},
            {u"account-handle-saved"_s, saved},
            {u"account-handle-discard"_s, discarding},
            {u"account-sign-out"_s, signingOut}};
}

QList<GalleryScene> AccountScenes::all() {
    return launching() + signingIn() + trying() + firstTime() + signedIn();
}

} // namespace lmp
