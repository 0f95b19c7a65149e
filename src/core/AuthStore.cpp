#include "core/AuthStore.h"

#include "core/Detach.h"
#include "core/Telemetry.h"
#include "platform/Log.h"

#include <QMutex>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto quietWait = 2500ms;
constexpr auto restOfWait = 17500ms;
constexpr int attempts = 3;
constexpr auto betweenAttempts = 2s;
/// A sleep that is meant to be ended by its stop token.
constexpr auto longSleep = 1h;

const QString notPersisted =
    u"这台电脑上没有能用的钥匙串：登录只在这次运行里有效，关掉后要重新登录。什么都没有写到磁盘上。"_s;
const QString notStored = u"登录信息没能存进钥匙串：下次打开要重新登录。什么都没有写到磁盘上。"_s;
const QString notRemoved = u"已经退出登录，但钥匙串里的登录信息没能删掉，请在系统的钥匙串里手动删除。"_s;
const QString notRead = u"钥匙串没有答复，这次先按未登录处理；存着的登录信息没有动，下次打开再试。"_s;
const QString notLetIn = u"钥匙串没有打开，这次先按未登录处理；存着的登录信息没有动，下次打开再试。"_s;

} // namespace

class AuthStore::TokenBox {
public:
    std::optional<QString> read() const {
        const QMutexLocker lock(&m_mutex);
        return m_token;
    }
    void write(std::optional<QString> token) {
        const QMutexLocker lock(&m_mutex);
        m_token = std::move(token);
    }

private:
    mutable QMutex m_mutex;
    std::optional<QString> m_token;
};

const QString AuthStore::tokenKey = u"app-token"_s;
const QString AuthStore::keychainService = u"com.tolvey.quillet.auth"_s;

AuthStore::AuthStore(QUrl apiBase, Keychain &keychain, Clock &clock, const QString &accountSuffix, Settings *settings)
    : m_keychain(keychain)
    , m_clock(clock)
    , m_account(tokenKey + accountSuffix)
    , m_removals(settings)
    , m_token(std::make_shared<TokenBox>())
    , m_api(std::move(apiBase), tokenProvider()) {}

AuthStore::~AuthStore() {
    for (std::stop_source *source : {&m_endStop, &m_generationStop, &m_readStop, &m_settledStop, &m_writtenStop})
        source->request_stop();
}

std::optional<QString> AuthStore::token() const {
    return m_token->read();
}

APIClient::TokenProvider AuthStore::tokenProvider() const {
    return [box = m_token] {
        return box->read();
    };
}

QString AuthStore::accountKey() const {
    return m_user ? m_user->id : u"anonymous"_s;
}

bool AuthStore::isCurrent(quint64 generation, const QString &token) const {
    return m_generation == generation && m_token->read() == token;
}

// The start

void AuthStore::restore() {
    if (m_reading || m_phase != Phase::loading || token())
        return;
    if (m_removals.contains(m_account)) {
        store({});
        setPhase(Phase::signedOut);
        return;
    }
    m_reading = true;
    detach(watchKeychain(), "AuthStore::watchKeychain");
    detach(readKeychain(), "AuthStore::readKeychain");
}

void AuthStore::startWith(const QString &token) {
    begin(token, false);
    setPhase(Phase::loading);
    detach(verify(), "AuthStore::verify");
}

void AuthStore::startSignedOut() {
    begin({}, true);
    setPhase(Phase::signedOut);
}

QCoro::Task<> AuthStore::readKeychain() {
    const QPointer self(this);
    const auto generation = m_generation;
    const auto found = co_await m_keychain.read(keychainService, m_account);
    // Not reading any more: the wait was given up, and what comes now stays where it is for the next start.
    if (!self || generation != m_generation || !m_reading)
        co_return;
    endReading();
    if (!found) {
        qCWarning(logSession) << "the keychain could not be read:" << found.error().reason;
        if (found.error().refused)
            setNotice(notLetIn);
        else if (!found.error().unavailable)
            setNotice(notRead);
    }
    if (!found || !*found || (*found)->isEmpty()) {
        setPhase(Phase::signedOut);
        co_return;
    }
    m_isStored = true;
    m_token->write(**found);
    detach(verify(), "AuthStore::verify");
}

QCoro::Task<> AuthStore::watchKeychain() {
    const QPointer self(this);
    const auto generation = m_generation;
    const auto stop = m_readStop.get_token();
    const bool late = co_await m_clock.sleep(quietWait, stop);
    if (!self || !late || generation != m_generation || !m_reading)
        co_return;
    m_waitingOnKeychain = true;
    Q_EMIT waitingOnKeychainChanged();
    if (!self)
        co_return;
    const bool tooLate = co_await m_clock.sleep(restOfWait, stop);
    if (!self || !tooLate || generation != m_generation || !m_reading)
        co_return;
    qCWarning(logSession) << "the keychain did not answer in time";
    endReading();
    setNotice(notRead);
    setPhase(Phase::signedOut);
}

void AuthStore::endReading() {
    m_reading = false;
    m_readStop.request_stop();
    if (std::exchange(m_waitingOnKeychain, false))
        Q_EMIT waitingOnKeychainChanged();
}

QCoro::Task<> AuthStore::verify() {
    const QPointer self(this);
    const auto generation = m_generation;
    const auto verified = token();
    if (!verified || m_verifying == generation)
        co_return;
    m_verifying = generation;
    setVerificationError({});
    const auto stop = m_generationStop.get_token();
    for (int attempt = 1;; ++attempt) {
        const auto answer = co_await service().me(m_endStop.get_token());
        if (!self || !isCurrent(generation, *verified))
            co_return;
        if (answer) {
            m_verifying.reset();
            setPhase(Phase::signedIn, answer->userInfo);
            co_return;
        }
        if (answer.error().status == 401) {
            m_verifying.reset();
            signOut();
            co_return;
        }
        if (attempt == attempts) {
            m_verifying.reset();
            setVerificationError(answer.error());
            co_return;
        }
        co_await m_clock.sleep(betweenAttempts, stop);
        if (!self || !isCurrent(generation, *verified))
            co_return;
    }
}

void AuthStore::retryVerification() {
    if (m_phase == Phase::loading && token())
        detach(verify(), "AuthStore::verify");
}

QCoro::Task<> AuthStore::settled() {
    const QPointer self(this);
    while (self && !isSettled())
        co_await m_clock.sleep(longSleep, m_settledStop.get_token());
}

// Signing in and out

/// What every change of person has in common: the old generation ends with all that was under way for it.
void AuthStore::begin(std::optional<QString> token, bool persistent) {
    ++m_generation;
    m_verifying.reset();
    std::exchange(m_generationStop, std::stop_source()).request_stop();
    m_token->write(std::move(token));
    m_persistent = persistent;
    endReading();
    setVerificationError({});
    Q_EMIT generationChanged();
}

void AuthStore::signIn(const AuthResponse &answer) {
    begin(answer.token, true);
    setNotice({});
    setPhase(Phase::signedIn, answer.userInfo);
    store(answer.token);
    if (answer.isNewAccount())
        Telemetry::note(u"identity.principal.registered"_s, {u"principal"_s, answer.userInfo.id});
}

void AuthStore::signOut() {
    // Still the same kind of session: a second sign-out must not reach for what the first one spared.
    begin({}, m_persistent);
    setNotice({});
    if (m_persistent)
        store({});
    setPhase(Phase::signedOut);
}

void AuthStore::setPhase(Phase phase, std::optional<UserInfo> user) {
    const bool same = phase == m_phase && user == m_user;
    m_phase = phase;
    m_user = std::move(user);
    const QPointer self(this);
    if (!same)
        Q_EMIT phaseChanged();
    if (self && isSettled())
        std::exchange(m_settledStop, std::stop_source()).request_stop();
}

void AuthStore::setVerificationError(std::optional<APIError> error) {
    const bool changed = m_verificationError != error;
    m_verificationError = std::move(error);
    const QPointer self(this);
    if (changed)
        Q_EMIT verificationFailedChanged();
    if (self && isSettled())
        std::exchange(m_settledStop, std::stop_source()).request_stop();
}

void AuthStore::setNotice(const QString &notice) {
    if (std::exchange(m_notice, notice) != notice)
        Q_EMIT noticeChanged();
}

// The keychain's writer. One operation at a time, always for the newest wish: whatever the keychain's own pace, the
// last of a sign-in and a sign-out is what it holds in the end.

void AuthStore::store(std::optional<QString> secret) {
    // Whatever becomes of this process, the next start must not be the one who has left.
    if (!secret)
        m_removals.add(m_account);
    m_pendingWrite = Write{std::move(secret)};
    if (!m_writing)
        detach(writeKeychain(), "AuthStore::writeKeychain");
}

QCoro::Task<> AuthStore::writeKeychain() {
    const QPointer self(this);
    m_writing = true;
    while (m_pendingWrite) {
        const Write write = *std::exchange(m_pendingWrite, std::nullopt);
        auto done = write.secret ? co_await m_keychain.write(keychainService, m_account, *write.secret)
                                 : co_await m_keychain.remove(keychainService, m_account);
        if (!self)
            co_return;
        // The item of whoever was signed in before must not come back at the next start.
        if (!done && write.secret && !done.error().unavailable && !m_pendingWrite) {
            co_await m_keychain.remove(keychainService, m_account);
            if (!self)
                co_return;
        }
        if (done)
            m_isStored = write.secret.has_value();
        // What was written while its removal is wanted already is still to go.
        if (done && !(write.secret && m_pendingWrite))
            m_removals.drop(m_account);
        if (done || m_pendingWrite)
            continue;
        qCWarning(logSession) << "the keychain could not be written:" << done.error().reason;
        if (write.secret)
            setNotice(done.error().unavailable ? notPersisted : notStored);
        else if (m_isStored || !done.error().unavailable)
            setNotice(notRemoved);
        if (!self)
            co_return;
    }
    m_writing = false;
    std::exchange(m_writtenStop, std::stop_source()).request_stop();
}

QCoro::Task<bool> AuthStore::keychainSettled(std::chrono::milliseconds limit) {
    const QPointer self(this);
    if (!keychainWritePending())
        co_return true;
    // One wait: the writer ends it when nothing is left.
    co_await m_clock.sleep(limit, m_writtenStop.get_token());
    co_return self && !keychainWritePending();
}

} // namespace lmp
