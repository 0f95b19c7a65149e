#include "screens/account/SessionModel.h"

#include "app/Application.h"
#include "core/Detach.h"
#include "core/PlainLabel.h"

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// How long a sign-out waits for the keychain before it says that it does not know.
constexpr auto keychainPatience = 10s;

} // namespace

SessionModel::SessionModel(Application &application, QObject *parent)
    : SessionModel(AccountServices{.auth = application.auth(),
                                   .clock = application.clock(),
                                   .makeLogin = [&application] { return application.makeLoginModel(); },
                                   .webAuth = &application.webAuth(),
                                   .tokenIsGiven = application.tokenIsGiven()},
                   parent) {}

SessionModel::SessionModel(AccountServices services, QObject *parent)
    : QObject(parent)
    , m_services(std::move(services)) {
    AuthStore *auth = &m_services.auth;
    connect(auth, &AuthStore::phaseChanged, this, &SessionModel::onPhase);
    connect(auth, &AuthStore::generationChanged, this, &SessionModel::onGeneration);
    connect(auth, &AuthStore::waitingOnKeychainChanged, this, &SessionModel::changed);
    connect(auth, &AuthStore::verificationFailedChanged, this, &SessionModel::changed);
    connect(auth, &AuthStore::noticeChanged, this, [this] {
        m_noticeClosed = false;
        Q_EMIT changed();
    });
}

SessionModel::Phase SessionModel::phase() const {
    switch (m_services.auth.phase()) {
    case AuthStore::Phase::signedIn:
        return Phase::SignedIn;
    case AuthStore::Phase::signedOut:
        return Phase::SignedOut;
    case AuthStore::Phase::loading:
        break;
    }
    return Phase::Loading;
}

QString SessionModel::waitingText() const {
    return waitingOnKeychain() ? u"正在等钥匙串回答……"_s : u"正在打开……"_s;
}

QString SessionModel::verificationMessage() const {
    const auto &error = m_services.auth.verificationError();
    return error ? error->reason : QString();
}

QString SessionModel::notice() const {
    if (!m_notice.isEmpty())
        return m_notice;
    return m_noticeClosed ? QString() : m_services.auth.notice();
}

// Who

QString SessionModel::userId() const {
    const auto &user = m_services.auth.user();
    return user ? PlainLabel::line(user->id) : QString();
}

QString SessionModel::userName() const {
    const auto &user = m_services.auth.user();
    return user ? PlainLabel::line(user->username.value_or(user->id)) : QString();
}

QString SessionModel::userHandle() const {
    const auto &user = m_services.auth.user();
    return PlainLabel::line(user && m_savedHandle.isEmpty() ? user->handle.value_or(QString()) : m_savedHandle);
}

QString SessionModel::userDetail() const {
    const auto &user = m_services.auth.user();
    if (!user)
        return {};
    if (user->phone && !user->phone->isEmpty())
        return PlainLabel::line(user->dialCode.value_or(QString()) + u' ' + *user->phone);
    return PlainLabel::line(user->email.value_or(QString()));
}

bool SessionModel::legacyLinked() const {
    const auto &user = m_services.auth.user();
    return user && user->legacyLinked.value_or(false);
}

// What is made when it is asked for

SignInModel *SessionModel::signIn() {
    if (!m_signIn)
        m_signIn = new SignInModel(m_services, this);
    return m_signIn;
}

GuestModel *SessionModel::guest() {
    if (!m_guest)
        m_guest = new GuestModel(m_services.auth.service(), this);
    return m_guest;
}

HandleModel *SessionModel::handle() {
    if (!m_handle) {
        m_handle = new HandleModel(m_services.auth.service(), m_services.clock, this);
        connect(m_handle, &HandleModel::saved, this, [this](const QString &handle) {
            m_savedHandle = handle;
            Q_EMIT changed();
        });
        connect(m_handle, &HandleModel::unseenRefusal, this, [this](const QString &message) {
            say(message.isEmpty() ? QString() : u"主页名没有存下：%1"_s.arg(message));
        });
    }
    return m_handle;
}

// Changes of person

void SessionModel::onGeneration() {
    m_savedHandle.clear();
    m_notice.clear();
    m_newAccount.reset();
    m_noticeClosed = false;
    if (m_handle)
        m_handle->restart();
    Q_EMIT changed();
}

void SessionModel::onPhase() {
    if (phase() == Phase::SignedIn) {
        // The screen it belongs to goes now; the notice is for whoever has just come in.
        if (m_signIn) {
            m_newAccount = m_signIn->newAccountNotice();
            m_signIn->forget();
        }
        if (m_guest)
            m_guest->leave();
    }
    Q_EMIT changed();
}

QString SessionModel::newAccountTitle() const {
    return m_newAccount ? m_newAccount->title : QString();
}

QString SessionModel::newAccountAdvice() const {
    return m_newAccount ? m_newAccount->advice : QString();
}

QString SessionModel::newAccountClose() const {
    return m_newAccount ? m_newAccount->close : QString();
}

void SessionModel::closeNewAccountNotice() {
    m_newAccount.reset();
    Q_EMIT changed();
}

void SessionModel::say(const QString &notice) {
    m_notice = notice;
    Q_EMIT changed();
}

void SessionModel::closeNotice() {
    // The other has not been seen yet.
    if (!m_notice.isEmpty())
        m_notice.clear();
    else
        m_noticeClosed = true;
    Q_EMIT changed();
}

void SessionModel::retryVerification() {
    m_services.auth.retryVerification();
}

// The way out

QString SessionModel::signOutText() const {
    if (m_services.tokenIsGiven)
        return u"这次的登录来自环境变量 LMP_TOKEN：现在退出只到这次运行结束，去掉它才不会再登录。"_s;
    return u"这台电脑上的登录信息会删掉，账号和里面的内容不受影响。已经存下的草稿留在这台电脑上，再登录这个账号时还在；"
           u"无痕对话不保存，会消失。"_s;
}

void SessionModel::signOut() {
    m_services.auth.signOut();
    detach(watchSignOut(), "SessionModel::signOut");
}

QCoro::Task<> SessionModel::watchSignOut() {
    const QPointer self(this);
    const auto generation = m_services.auth.authenticationGeneration();
    m_signingOut = true;
    Q_EMIT changed();
    if (!self)
        co_return;
    const bool done = co_await m_services.auth.keychainSettled(keychainPatience);
    if (!self)
        co_return;
    m_signingOut = false;
    if (!done && generation == m_services.auth.authenticationGeneration())
        say(u"钥匙串没有回答，登录可能还留在里面。"_s);
    else
        Q_EMIT changed();
}

} // namespace lmp
