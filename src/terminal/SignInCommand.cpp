#include "terminal/SignInCommand.h"

#include "core/PlainLabel.h"

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

SignInCommand::SignInCommand(Application &application, Console &console, StandardInput &input, CommandLine line)
    : m_application(application)
    , m_console(console)
    , m_input(input)
    , m_line(std::move(line)) {}

LoginModel::Mode SignInCommand::mode() const {
    if (!m_line.email.isEmpty())
        return m_line.registerEmail ? LoginModel::Mode::emailRegister : LoginModel::Mode::emailSignIn;
    return m_line.password ? LoginModel::Mode::password : LoginModel::Mode::sms;
}

QCoro::Task<ExitCode> SignInCommand::run() {
    // A session that is still being restored must not end in the middle of this one.
    co_await m_application.auth().settled();
    m_model = m_application.makeLoginModel();
    QObject::connect(m_model.get(), &LoginModel::noticed, m_model.get(),
                     [this](const QString &text) { m_console.note(text); });
    if (m_line.google) {
        if (!m_model->offersGoogle())
            co_return complain(u"这个服务没有设置 Google 登录。"_s, ExitCode::Failed);
        QObject::connect(&m_application.webAuth(), &WebAuthPresenter::linkOffered, m_model.get(),
                         [this](const QUrl &url, bool opened) {
                             m_console.note((opened ? u"浏览器没有打开时，请在这台电脑的浏览器里打开：\n"_s
                                                    : u"请在这台电脑的浏览器里打开：\n"_s) +
                                            url.toString(QUrl::FullyEncoded));
                         });
        m_console.note(u"正在浏览器里等你登录……"_s);
        co_await m_model->signInWithGoogle();
        co_return co_await finish();
    }
    m_model->setMode(mode());
    auto fields = m_model->fields();
    fields.email = m_line.email;
    fields.phone = m_line.phone;
    fields.dialCode = m_line.dialCode;
    m_model->edit(fields);
    if (!m_model->phoneMessage().isEmpty())
        co_return complain(m_model->phoneMessage(), ExitCode::Usage);
    const bool needsCode = mode() == LoginModel::Mode::sms || mode() == LoginModel::Mode::emailRegister;
    if (needsCode) {
        if (const auto ended = co_await askCode())
            co_return *ended;
    }
    if (mode() != LoginModel::Mode::sms) {
        if (const auto ended = co_await askPassword())
            co_return *ended;
    }
    // Nothing would be sent, and whoever is signed in already would look like the answer.
    if (!m_model->canSubmit())
        co_return complain(u"这个号码或地址不能用来登录。"_s, ExitCode::Usage);
    co_await m_model->submit();
    co_return co_await finish();
}

QCoro::Task<std::optional<ExitCode>> SignInCommand::askCode() {
    if (!m_model->canSendCode())
        co_return complain(u"这个号码或地址不能用来收验证码。"_s, ExitCode::Usage);
    co_await m_model->sendCode();
    if (!m_model->message().isEmpty())
        co_return complain(m_model->message(), ExitCode::Failed);
    auto fields = m_model->fields();
    QString &code = mode() == LoginModel::Mode::sms ? fields.smsCode : fields.emailCode;
    const auto typed = co_await m_input.secret(code.isEmpty() ? u"验证码："_s : u"验证码（直接回车用已填入的）："_s);
    if (typed && !typed->trimmed().isEmpty())
        code = typed->trimmed();
    if (code.isEmpty())
        co_return complain(u"没有读到验证码。"_s, ExitCode::Usage);
    m_model->edit(fields);
    co_return std::nullopt;
}

QCoro::Task<std::optional<ExitCode>> SignInCommand::askPassword() {
    const auto typed = co_await m_input.secret(m_line.registerEmail ? u"设一个密码："_s : u"密码："_s);
    if (!typed || typed->isEmpty())
        co_return complain(u"没有读到密码。"_s, ExitCode::Usage);
    auto fields = m_model->fields();
    fields.password = *typed;
    m_model->edit(fields);
    co_return std::nullopt;
}

QCoro::Task<ExitCode> SignInCommand::finish() {
    auto &auth = m_application.auth();
    if (!m_model->message().isEmpty())
        co_return complain(m_model->message(), ExitCode::Failed);
    if (auth.phase() != AuthStore::Phase::signedIn || !auth.user())
        co_return complain(u"没有登录上，再试一次。"_s, ExitCode::Failed);
    if (const auto notice = m_model->newAccountNotice())
        m_console.note(notice->title + u'\n' + notice->advice);
    co_await auth.keychainSettled(10s);
    const UserInfo user = *auth.user();
    m_console.note(u"已登录："_s + PlainLabel::line(user.username.value_or(user.id)));
    co_return ExitCode::Submitted;
}

ExitCode SignInCommand::complain(const QString &text, ExitCode code) {
    m_console.error(text);
    return code;
}

} // namespace lmp
