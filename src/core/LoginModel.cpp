#include "core/LoginModel.h"

#include "core/Detach.h"
#include "platform/Log.h"

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr qsizetype mainlandDigits = 11;
constexpr qsizetype fewestDigits = 6;

const QString codeFilled = u"开发环境已自动填入验证码"_s;
const QString codeSent = u"验证码已发送，请查收"_s;
const QString codeNotSent = u"验证码发送失败"_s;
const QString notSignedIn = u"验证码不对 · 还能试"_s;
const QString passwordReset = u"密码已重设，已填进密码框——点登录即可。"_s;
const QString passwordNotReset = u"重设失败，稍后再试"_s;
const QString providerFailed = u"没关系，换个方式或再试一次都行"_s;

const LoginModel::NewAccountNotice newAccount{
    u"登录新建了一个账号"_s,
    u"如果你以前用手机号或邮箱注册过，请退出后改用原来的手机号或邮箱登录，之前的内容都在那个账号里。"_s,
    u"关掉这条提示"_s};

QString reasonOr(const APIError &error, const QString &otherwise) {
    return error.reason.isEmpty() ? otherwise : error.reason;
}

std::optional<QString> unlessEmpty(const QString &text) {
    return text.isEmpty() ? std::nullopt : std::optional(text);
}

} // namespace

LoginModel::LoginModel(AuthStore &store, Clock &clock)
    : LoginModel(store, clock, Providers()) {}

LoginModel::LoginModel(AuthStore &store, Clock &clock, Providers providers)
    : m_store(store)
    , m_clock(clock)
    , m_providers(providers) {}

LoginModel::~LoginModel() {
    m_stop.request_stop();
    m_providerStop.request_stop();
}

// Fields

void LoginModel::setMode(Mode mode) {
    if (std::exchange(m_mode, mode) == mode)
        return;
    m_message.clear();
    m_notice.clear();
    Q_EMIT changed();
}

void LoginModel::edit(const Fields &fields) {
    m_fields = fields;
    Q_EMIT changed();
}

QString LoginModel::phoneDigits() const {
    QString digits;
    for (const QChar c : m_fields.phone) {
        if (c.digitValue() >= 0 && c.isDigit())
            digits += QChar(u'0' + c.digitValue());
    }
    return digits;
}

QString LoginModel::phoneMessage() const {
    const qsizetype count = phoneDigits().size();
    if (count == 0)
        return {};
    if (m_fields.dialCode != "+86"_L1)
        return count < fewestDigits ? u"手机号位数不够"_s : QString();
    if (count == mainlandDigits)
        return {};
    return (count > mainlandDigits ? u"手机号多了 "_s : u"手机号少了 "_s) +
           QString::number(std::abs(count - mainlandDigits)) + u" 位 · 中国大陆号码是 11 位"_s;
}

bool LoginModel::usesPhone() const {
    return m_mode == Mode::sms || m_mode == Mode::password || (m_mode == Mode::reset && !m_fields.resetByEmail);
}

QString LoginModel::address() const {
    if (!usesPhone())
        return m_fields.email.trimmed();
    const QString digits = phoneDigits();
    return digits.isEmpty() ? digits : m_fields.dialCode + u' ' + digits;
}

int LoginModel::resendIn() const {
    const auto left = m_sendableAt.value(address()) - m_clock.monotonic();
    return std::max(0, int(std::chrono::ceil<std::chrono::seconds>(left).count()));
}

bool LoginModel::canSendCode() const {
    const bool hasCode = m_mode == Mode::sms || m_mode == Mode::emailRegister || m_mode == Mode::reset;
    const bool addressed = usesPhone() ? phoneIsUsable() : !m_fields.email.trimmed().isEmpty();
    return hasCode && addressed && !m_sending && resendIn() == 0;
}

bool LoginModel::canSubmit() const {
    if (m_submitting || (usesPhone() ? !phoneIsUsable() : m_fields.email.trimmed().isEmpty()))
        return false;
    switch (m_mode) {
    case Mode::sms:
        return !m_fields.smsCode.isEmpty();
    case Mode::password:
    case Mode::emailSignIn:
        return !m_fields.password.isEmpty();
    case Mode::emailRegister:
        return !m_fields.password.isEmpty() && !m_fields.emailCode.isEmpty();
    case Mode::reset:
        return !m_fields.newPassword.isEmpty() &&
               !(m_fields.resetByEmail ? m_fields.emailCode : m_fields.smsCode).isEmpty();
    }
    return false;
}

// Codes

QCoro::Task<Result<SendCodeResponse>> LoginModel::codeRequest() const {
    const AuthService service = m_store.service();
    const QString email = m_fields.email.trimmed();
    if (m_mode == Mode::sms)
        return service.sendSms({phoneDigits(), m_fields.dialCode});
    if (m_mode == Mode::emailRegister)
        return service.sendEmail({email});
    return m_fields.resetByEmail ? service.requestResetCode({.email = email})
                                 : service.requestResetCode({.phone = phoneDigits(), .dialCode = m_fields.dialCode});
}

QCoro::Task<> LoginModel::sendCode() {
    const QPointer self(this);
    if (!canSendCode())
        co_return;
    m_sending = true;
    const bool byEmail = !usesPhone();
    const QString sentTo = address();
    auto request = codeRequest();
    begin();
    const auto answer = co_await request;
    if (!self)
        co_return;
    m_sending = false;
    if (!answer) {
        fail(reasonOr(answer.error(), codeNotSent));
        co_return;
    }
    m_sendableAt[sentTo] = m_clock.monotonic() + std::chrono::seconds(resendSeconds);
    detach(countDown(), "LoginModel::countDown");
    if (answer->devCode && !answer->devCode->isEmpty()) {
        fillCode(byEmail, *answer->devCode);
        show(codeFilled);
    }
    if (self)
        show(codeSent);
}

void LoginModel::fillCode(bool byEmail, const QString &code) {
    (byEmail ? m_fields.emailCode : m_fields.smsCode) = code;
}

QCoro::Task<> LoginModel::countDown() {
    const QPointer self(this);
    const auto stop = m_stop.get_token();
    for (int second = 0; second < resendSeconds && co_await m_clock.sleep(1s, stop); ++second) {
        if (!self)
            co_return;
        Q_EMIT changed();
        if (!self)
            co_return;
    }
}

// Signing in

LoginModel::SignIn LoginModel::signInRequest() const {
    const AuthService service = m_store.service();
    const auto invite = unlessEmpty(m_fields.inviteCode.trimmed());
    const QString email = m_fields.email.trimmed();
    switch (m_mode) {
    case Mode::sms:
        return service.smsLogin({phoneDigits(), m_fields.smsCode.trimmed(), m_fields.dialCode, invite});
    case Mode::password:
        return service.passwordLogin({phoneDigits(), m_fields.password});
    case Mode::emailRegister:
        return service.emailRegister({email, m_fields.password, m_fields.emailCode.trimmed(), invite});
    default:
        return service.emailLogin({email, m_fields.password});
    }
}

QCoro::Task<> LoginModel::submit() {
    if (!canSubmit())
        return []() -> QCoro::Task<> {
            co_return;
        }();
    return m_mode == Mode::reset ? resetPassword() : signInThrough(signInRequest(), false);
}

QCoro::Task<> LoginModel::signInThrough(SignIn request, bool provider) {
    const QPointer self(this);
    const auto generation = m_store.authenticationGeneration();
    m_submitting = true;
    begin();
    const auto answer = co_await request;
    if (!self)
        co_return;
    endSubmit();
    // Somebody has signed in or out meanwhile: this answer is no longer wanted.
    if (!self || generation != m_store.authenticationGeneration())
        co_return;
    if (!answer) {
        fail(reasonOr(answer.error(), provider ? providerFailed : notSignedIn));
        co_return;
    }
    if (provider && answer->isNewAccount() && !answer->userInfo.legacyLinked.value_or(false))
        m_newAccount = newAccount;
    m_store.signIn(*answer);
    if (self)
        Q_EMIT changed();
}

QCoro::Task<> LoginModel::resetPassword() {
    const QPointer self(this);
    ResetReq body{.code = (m_fields.resetByEmail ? m_fields.emailCode : m_fields.smsCode).trimmed(),
                  .newPassword = m_fields.newPassword};
    (m_fields.resetByEmail ? body.email : body.phone) =
        m_fields.resetByEmail ? m_fields.email.trimmed() : phoneDigits();
    m_submitting = true;
    begin();
    const auto answer = co_await m_store.service().resetPassword(body);
    if (!self)
        co_return;
    endSubmit();
    if (!self)
        co_return;
    if (!answer || answer->ok == false) {
        fail(answer ? passwordNotReset : reasonOr(answer.error(), passwordNotReset));
        co_return;
    }
    m_fields.password = body.newPassword;
    show(passwordReset);
}

// Providers

QCoro::Task<> LoginModel::signInWithGoogle() {
    const QPointer self(this);
    if (!offersGoogle() || m_submitting)
        co_return;
    const auto generation = m_store.authenticationGeneration();
    m_submitting = true;
    m_providerStop = std::stop_source();
    begin();
    const auto token = co_await m_providers.google->idToken(m_providerStop.get_token());
    if (!self)
        co_return;
    endSubmit();
    if (!self || generation != m_store.authenticationGeneration())
        co_return;
    if (!token) {
        qCInfo(logSession) << "signing in with Google:" << token.error().reason;
        fail(providerFailed);
        co_return;
    }
    co_await signInThrough(m_store.service().googleLogin({token->text}), true);
}

QCoro::Task<> LoginModel::signInWithApple() {
    const QPointer self(this);
    if (!offersApple() || m_submitting)
        co_return;
    const auto generation = m_store.authenticationGeneration();
    m_submitting = true;
    begin();
    const auto credential = co_await m_providers.apple->signIn();
    if (!self)
        co_return;
    endSubmit();
    if (!self || generation != m_store.authenticationGeneration())
        co_return;
    if (!credential) {
        qCInfo(logSession) << "signing in with Apple:" << credential.error().reason;
        fail(providerFailed);
        co_return;
    }
    co_await signInThrough(m_store.service().appleLogin({credential->identityToken, credential->fullName}), true);
}

void LoginModel::cancelProvider() {
    m_providerStop.request_stop();
}

void LoginModel::closeNewAccountNotice() {
    m_newAccount.reset();
    Q_EMIT changed();
}

// What is shown

void LoginModel::begin() {
    m_notice.clear();
    m_message.clear();
    Q_EMIT changed();
}

void LoginModel::endSubmit() {
    m_submitting = false;
    Q_EMIT changed();
}

void LoginModel::show(const QString &notice) {
    const QPointer self(this);
    m_notice = notice;
    Q_EMIT noticed(notice);
    if (self)
        Q_EMIT changed();
}

void LoginModel::fail(const QString &message) {
    m_message = message;
    Q_EMIT changed();
}

} // namespace lmp
