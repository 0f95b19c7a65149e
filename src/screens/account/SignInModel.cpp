#include "screens/account/SignInModel.h"

#include "core/Detach.h"
#include "core/WebAuthPresenter.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

struct DialCode {
    QString code;
    QString region;
};

const QList<DialCode> &dialCodes() {
    static const QList<DialCode> codes{
        {u"+86"_s, u"中国大陆"_s},  {u"+852"_s, u"中国香港"_s}, {u"+853"_s, u"中国澳门"_s},
        {u"+886"_s, u"中国台湾"_s}, {u"+65"_s, u"新加坡"_s},    {u"+60"_s, u"马来西亚"_s},
        {u"+81"_s, u"日本"_s},      {u"+82"_s, u"韩国"_s},      {u"+1"_s, u"美国、加拿大"_s},
        {u"+44"_s, u"英国"_s},      {u"+353"_s, u"爱尔兰"_s},   {u"+49"_s, u"德国"_s},
        {u"+33"_s, u"法国"_s},      {u"+61"_s, u"澳大利亚"_s},  {u"+64"_s, u"新西兰"_s},
    };
    return codes;
}

/// Digits of any script as those that the service knows: an input method may give wide ones.
QString plainDigits(QString text) {
    for (QChar &c : text) {
        if (c.isDigit())
            c = QChar(char16_t(u'0' + c.digitValue()));
    }
    return text;
}

/// A code out of what was typed or pasted: a whole message often comes along with it.
QString codeIn(const QString &typed) {
    const QString text = plainDigits(typed);
    QString bare = text;
    bare.removeIf([](QChar c) { return c.isSpace(); });
    const auto plain = [](QChar c) {
        return c.unicode() < 0x80 && c.isLetterOrNumber();
    };
    if (std::ranges::all_of(bare, plain))
        return bare;
    static const QRegularExpression run(u"(?<![0-9])[0-9]{4,8}(?![0-9])"_s);
    auto found = run.globalMatch(text);
    if (!found.hasNext())
        return text;
    const QString code = found.next().captured();
    return found.hasNext() ? text : code;
}

} // namespace

SignInModel::SignInModel(const AccountServices &services, QObject *parent)
    : QObject(parent)
    , m_services(services) {
    makeLogin();
    if (m_services.webAuth) {
        connect(m_services.webAuth, &WebAuthPresenter::linkOffered, this, [this](const QUrl &url, bool opened) {
            if (m_providerText.isEmpty())
                return;
            m_providerLink = url.toString(QUrl::FullyEncoded);
            m_providerOpened = opened;
            Q_EMIT changed();
        });
    }
}

void SignInModel::makeLogin() {
    m_login = m_services.makeLogin();
    connect(m_login.get(), &LoginModel::changed, this, &SignInModel::changed);
    connect(m_login.get(), &LoginModel::noticed, this, [this](const QString &text) {
        if (m_action == Action::SendCode)
            m_codeNotices.push_back(text);
    });
}

void SignInModel::forget() {
    m_login->edit({});
    m_providerText.clear();
    begin(Action::None);
    makeLogin();
    Q_EMIT changed();
}

// The mode

SignInModel::Mode SignInModel::mode() const {
    return Mode(int(m_login->mode()));
}

void SignInModel::setMode(Mode mode) {
    if (mode == this->mode() || submitting())
        return;
    begin(Action::None);
    m_login->setMode(LoginModel::Mode(int(mode)));
    // A password is for one kind of account; typed for another, it would be sent to the wrong one.
    auto next = fields();
    next.password.clear();
    next.newPassword.clear();
    m_login->edit(next);
}

int SignInModel::way() const {
    switch (mode()) {
    case Mode::Sms:
        return 0;
    case Mode::Password:
        return 1;
    case Mode::EmailSignIn:
    case Mode::EmailRegister:
        return 2;
    case Mode::Reset:
        break;
    }
    return resetByEmail() ? 2 : 1;
}

void SignInModel::chooseWay(int way) {
    constexpr std::array modes{Mode::Sms, Mode::Password, Mode::EmailSignIn};
    if (way >= 0 && way < int(modes.size()))
        setMode(modes[size_t(way)]);
}

bool SignInModel::asksPhone() const {
    return mode() == Mode::Sms || mode() == Mode::Password || (mode() == Mode::Reset && !resetByEmail());
}

bool SignInModel::asksCode() const {
    return mode() == Mode::Sms || mode() == Mode::EmailRegister || mode() == Mode::Reset;
}

bool SignInModel::asksPassword() const {
    return mode() == Mode::Password || mode() == Mode::EmailSignIn || mode() == Mode::EmailRegister;
}

bool SignInModel::asksInvite() const {
    return mode() == Mode::Sms || mode() == Mode::EmailRegister;
}

// The fields

void SignInModel::edit(const LoginModel::Fields &fields, Field about) {
    if (m_missing == about)
        m_missing = Field::NoField;
    m_login->edit(fields);
}

void SignInModel::set(QString LoginModel::Fields::*field, const QString &value, Field about) {
    if (fields().*field == value)
        return;
    auto next = fields();
    next.*field = value;
    edit(next, about);
}

QStringList SignInModel::dialLabels() {
    QStringList labels;
    for (const DialCode &dial : dialCodes())
        labels.push_back(dial.code + u' ' + dial.region);
    return labels;
}

int SignInModel::dialIndex() const {
    const auto found = std::ranges::find(dialCodes(), fields().dialCode, &DialCode::code);
    return found == dialCodes().end() ? -1 : int(found - dialCodes().begin());
}

void SignInModel::setDialIndex(int index) {
    if (index >= 0 && index < dialCodes().size())
        set(&LoginModel::Fields::dialCode, dialCodes()[index].code, Field::PhoneField);
}

void SignInModel::setPhone(const QString &phone) {
    set(&LoginModel::Fields::phone, phone, Field::PhoneField);
}

void SignInModel::setEmail(const QString &email) {
    set(&LoginModel::Fields::email, email, Field::EmailField);
}

bool SignInModel::codeIsByEmail() const {
    return !asksPhone();
}

QString SignInModel::code() const {
    return codeIsByEmail() ? fields().emailCode : fields().smsCode;
}

void SignInModel::setCode(const QString &code) {
    const QString found = codeIn(code);
    set(codeIsByEmail() ? &LoginModel::Fields::emailCode : &LoginModel::Fields::smsCode, found, Field::CodeField);
    // The field still shows what was pasted.
    if (found != code)
        Q_EMIT changed();
}

void SignInModel::setPassword(const QString &password) {
    set(&LoginModel::Fields::password, password, Field::PasswordField);
}

void SignInModel::setNewPassword(const QString &password) {
    set(&LoginModel::Fields::newPassword, password, Field::PasswordField);
}

void SignInModel::setInviteCode(const QString &code) {
    set(&LoginModel::Fields::inviteCode, code, Field::NoField);
}

void SignInModel::setResetByEmail(bool byEmail) {
    if (resetByEmail() == byEmail || submitting())
        return;
    begin(Action::None);
    auto next = fields();
    next.resetByEmail = byEmail;
    m_login->edit(next);
}

// What is said beside them

QString SignInModel::phoneMessage() const {
    return m_login->phoneDigits().isEmpty() ? missing(Field::PhoneField, u"还没填手机号"_s) : m_login->phoneMessage();
}

QString SignInModel::emailMessage() const {
    return missing(Field::EmailField, u"还没填邮箱"_s);
}

QString SignInModel::codeMessage() const {
    const QString gap = missing(Field::CodeField, u"还没填验证码"_s);
    return gap.isEmpty() && tellsOfCode() ? m_login->message() : gap;
}

QString SignInModel::passwordMessage() const {
    return missing(Field::PasswordField, mode() == Mode::Reset ? u"还没填新密码"_s : u"还没填密码"_s);
}

QString SignInModel::message() const {
    return m_action == Action::Submit ? m_login->message() : QString();
}

QString SignInModel::codeNotice() const {
    return tellsOfCode() ? m_codeNotices.join(u'\n') : QString();
}

bool SignInModel::tellsOfCode() const {
    return m_action == Action::SendCode && m_codeAddress == m_login->address();
}

QString SignInModel::sendText() const {
    if (sending())
        return u"正在发送……"_s;
    const int seconds = m_login->resendIn();
    return seconds > 0 ? u"%1 秒后可重发"_s.arg(seconds) : u"发送验证码"_s;
}

QString SignInModel::submitText() const {
    switch (mode()) {
    case Mode::EmailRegister:
        return u"注册并登录"_s;
    case Mode::Reset:
        return u"重设密码"_s;
    default:
        return u"登录"_s;
    }
}

// What is done

void SignInModel::begin(Action action) {
    m_action = action;
    m_missing = Field::NoField;
    m_codeNotices.clear();
    m_notice.clear();
    m_providerLink.clear();
}

SignInModel::Field SignInModel::sendCode() {
    if (!canSendCode())
        return Field::NoField;
    if (!m_login->canSendCode()) {
        m_missing = asksPhone() ? Field::PhoneField : Field::EmailField;
        Q_EMIT changed();
        return m_missing;
    }
    begin(Action::SendCode);
    m_codeAddress = m_login->address();
    detach(m_login->sendCode(), "LoginModel::sendCode");
    return Field::NoField;
}

SignInModel::Field SignInModel::firstMissing() const {
    if (asksPhone() && (m_login->phoneDigits().isEmpty() || !m_login->phoneMessage().isEmpty()))
        return Field::PhoneField;
    if (!asksPhone() && fields().email.trimmed().isEmpty())
        return Field::EmailField;
    if (asksCode() && code().isEmpty())
        return Field::CodeField;
    const bool hasPassword = mode() == Mode::Reset ? !newPassword().isEmpty() : !password().isEmpty();
    return (asksPassword() || mode() == Mode::Reset) && !hasPassword ? Field::PasswordField : Field::NoField;
}

SignInModel::Field SignInModel::submit() {
    if (submitting())
        return Field::NoField;
    m_missing = firstMissing();
    if (m_missing == Field::NoField && m_login->canSubmit()) {
        begin(Action::Submit);
        detach(submitNow(), "SignInModel::submit");
        return Field::NoField;
    }
    Q_EMIT changed();
    return m_missing;
}

QCoro::Task<> SignInModel::submitNow() {
    const QPointer self(this);
    const QPointer login(m_login.get());
    const bool resets = mode() == Mode::Reset;
    co_await login->submit();
    if (!self || !login || login != m_login.get() || !resets || !login->message().isEmpty())
        co_return;
    // The new password waits in the password field, as the sentence says; the rest has served.
    const QString notice = login->notice();
    auto next = login->fields();
    next.newPassword.clear();
    next.smsCode.clear();
    next.emailCode.clear();
    login->edit(next);
    if (!self || !login)
        co_return;
    begin(Action::None);
    m_notice = notice;
    login->setMode(next.resetByEmail ? LoginModel::Mode::emailSignIn : LoginModel::Mode::password);
}

void SignInModel::signInWithGoogle() {
    if (submitting() || !offersGoogle())
        return;
    startProvider(u"正在浏览器里等你登录……"_s, true);
    detach(waitForProvider(m_login->signInWithGoogle()), "SignInModel::signInWithGoogle");
}

void SignInModel::signInWithApple() {
    if (submitting() || !offersApple())
        return;
    startProvider(u"正在等系统的登录窗口……"_s, false);
    detach(waitForProvider(m_login->signInWithApple()), "SignInModel::signInWithApple");
}

void SignInModel::startProvider(const QString &text, bool cancels) {
    begin(Action::Submit);
    m_providerText = text;
    m_providerCancels = cancels;
}

QCoro::Task<> SignInModel::waitForProvider(QCoro::Task<> attempt) {
    const QPointer self(this);
    const QPointer login(m_login.get());
    Q_EMIT changed();
    co_await attempt;
    if (!self || !login || login != m_login.get())
        co_return;
    m_providerText.clear();
    m_providerLink.clear();
    Q_EMIT changed();
}

void SignInModel::cancelProvider() {
    m_login->cancelProvider();
}

} // namespace lmp
