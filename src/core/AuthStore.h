#pragma once

#include "core/AuthService.h"
#include "core/PendingRemovals.h"
#include "core/SSEClient.h"
#include "platform/Clock.h"
#include "platform/Keychain.h"

#include <QObject>

namespace lmp {

/// Who the person is: owns the session token, keeps it in the keychain, and verifies it with the service at start.
///
/// Owned by the application, UI thread; only `tokenProvider()`'s function may be called elsewhere, and may outlive the
/// store. Nothing here fails outwards: a token that the service refuses (401) signs out, anything else keeps it.
/// Every sign-in and sign-out begins a new generation, and what is still under way for an older one is dropped.
class AuthStore : public QObject {
    Q_OBJECT
public:
    enum class Phase { loading, signedIn, signedOut };
    Q_ENUM(Phase)

    /// The keychain account of the token.
    static const QString tokenKey;
    static const QString keychainService;

    /// @param apiBase the API base
    /// @param accountSuffix set apart the tokens of other sites and profiles: the account is `tokenKey` + suffix
    /// @param settings where a sign-out that the keychain has not carried out is remembered; null where nothing may be
    /// @param keychain, clock, settings outlive the store
    AuthStore(QUrl apiBase, Keychain &keychain, Clock &clock, const QString &accountSuffix = {},
              Settings *settings = nullptr);
    ~AuthStore() override;

    /// Reads the keychain, then verifies what it held. Once, at start. What a sign-out has left there is not read but
    /// removed.
    void restore();
    /// Begins with a token given from outside (LMP_TOKEN) and verifies it. The keychain is not touched for this
    /// session, neither now nor when it ends.
    void startWith(const QString &token);
    /// Begins signed out: nothing is read, and what is stored stays.
    void startSignedOut();

    /// Adopts the token and the user at once, and stores the token behind it.
    void signIn(const AuthResponse &answer);
    /// Forgets the token here and in the keychain.
    void signOut();
    /// Three attempts more, when verification had failed.
    void retryVerification();

    Phase phase() const { return m_phase; }
    /// Set while `phase` is signedIn.
    const std::optional<UserInfo> &user() const { return m_user; }
    /// Key of local records: the user's id, or "anonymous".
    QString accountKey() const;
    /// The session token; any thread.
    std::optional<QString> token() const;
    /// A function for APIClient that reads the current token; any thread, and valid without the store.
    APIClient::TokenProvider tokenProvider() const;

    /// True once the keychain has kept the start waiting for 2.5 s.
    bool waitingOnKeychain() const { return m_waitingOnKeychain; }
    /// The error of the third attempt, when the token could not be verified for another reason than 401: `phase` stays
    /// loading, and the token stays usable.
    const std::optional<APIError> &verificationError() const { return m_verificationError; }
    bool verificationFailed() const { return m_verificationError.has_value(); }
    quint64 authenticationGeneration() const { return m_generation; }
    std::optional<quint64> verifyingGeneration() const { return m_verifying; }
    bool keychainWritePending() const { return m_writing || m_pendingWrite; }
    /// What to tell the person when the keychain did not do as it was asked; empty when all is well.
    const QString &notice() const { return m_notice; }

    const APIClient &api() const { return m_api; }
    AuthService service() const { return AuthService(m_api); }
    SSEClient sse() const { return SSEClient(m_api.base, m_api.tokenProvider); }

    /// Waits until the start has ended: `phase` is no longer loading, or verification has failed.
    QCoro::Task<> settled();
    /// Waits until nothing is left to be written to the keychain, for `limit` at most.
    /// @return false when something still is
    QCoro::Task<bool> keychainSettled(std::chrono::milliseconds limit);

Q_SIGNALS:
    void phaseChanged();
    void waitingOnKeychainChanged();
    void verificationFailedChanged();
    void noticeChanged();
    /// A new sign-in or sign-out.
    void generationChanged();

private:
    /// The token as other threads see it; shared with every provider.
    class TokenBox;
    struct Write {
        std::optional<QString> secret; ///< none removes the item
    };

    QCoro::Task<> readKeychain();
    QCoro::Task<> watchKeychain();
    QCoro::Task<> verify();
    QCoro::Task<> writeKeychain();
    void begin(std::optional<QString> token, bool persistent);
    void endReading();
    void setPhase(Phase phase, std::optional<UserInfo> user = {});
    void setVerificationError(std::optional<APIError> error);
    void setNotice(const QString &notice);
    void store(std::optional<QString> secret);
    bool isSettled() const { return m_phase != Phase::loading || verificationFailed(); }
    bool isCurrent(quint64 generation, const QString &token) const;

    Keychain &m_keychain;
    Clock &m_clock;
    QString m_account;
    PendingRemovals m_removals;
    std::shared_ptr<TokenBox> m_token;
    APIClient m_api;
    Phase m_phase = Phase::loading;
    std::optional<UserInfo> m_user;
    quint64 m_generation = 1;
    std::optional<quint64> m_verifying;
    std::optional<APIError> m_verificationError;
    bool m_persistent = true; ///< whether this session's token belongs in the keychain
    bool m_isStored = false;  ///< the keychain is known to hold a token
    bool m_reading = false;
    bool m_waitingOnKeychain = false;
    bool m_writing = false;
    std::optional<Write> m_pendingWrite; ///< the newest wish only: an older one is not worth carrying out
    QString m_notice;
    std::stop_source m_endStop;        ///< ends the requests of this store
    std::stop_source m_generationStop; ///< ends the sleeps of this generation
    std::stop_source m_readStop;       ///< ends the watch over the keychain
    std::stop_source m_settledStop;    ///< wakes `settled`
    std::stop_source m_writtenStop;    ///< wakes `keychainSettled`
};

} // namespace lmp
