#pragma once

#include "screens/account/AccountServices.h"
#include "screens/account/GuestModel.h"
#include "screens/account/HandleModel.h"
#include "screens/account/SignInModel.h"

#include <QtQml/qqmlregistration.h>

namespace lmp {

class Application;

/// Who is signed in, as the screens show it, and the way in and out.
///
/// Owned by the window's application, UI thread; the stores outlive it. Nothing fails outwards: what did not work is a
/// sentence in `verificationMessage` or `notice`.
class SessionModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made with the window")
    Q_PROPERTY(lmp::SessionModel::Phase phase READ phase NOTIFY changed)
    Q_PROPERTY(bool waitingOnKeychain READ waitingOnKeychain NOTIFY changed)
    Q_PROPERTY(QString waitingText READ waitingText NOTIFY changed)
    Q_PROPERTY(bool verificationFailed READ verificationFailed NOTIFY changed)
    Q_PROPERTY(QString verificationMessage READ verificationMessage NOTIFY changed)
    Q_PROPERTY(QString notice READ notice NOTIFY changed)
    Q_PROPERTY(QString userId READ userId NOTIFY changed)
    Q_PROPERTY(QString userName READ userName NOTIFY changed)
    Q_PROPERTY(QString userHandle READ userHandle NOTIFY changed)
    Q_PROPERTY(QString userDetail READ userDetail NOTIFY changed)
    Q_PROPERTY(bool legacyLinked READ legacyLinked NOTIFY changed)
    Q_PROPERTY(bool signingOut READ signingOut NOTIFY changed)
    Q_PROPERTY(QString signOutText READ signOutText NOTIFY changed)
    Q_PROPERTY(QString newAccountTitle READ newAccountTitle NOTIFY changed)
    Q_PROPERTY(QString newAccountAdvice READ newAccountAdvice NOTIFY changed)
    Q_PROPERTY(QString newAccountClose READ newAccountClose NOTIFY changed)
    Q_PROPERTY(lmp::SignInModel *signIn READ signIn CONSTANT)
    Q_PROPERTY(lmp::GuestModel *guest READ guest CONSTANT)
    Q_PROPERTY(lmp::HandleModel *handle READ handle CONSTANT)
public:
    enum class Phase { Loading, SignedOut, SignedIn };
    Q_ENUM(Phase)

    /// @param application opened, outlives this
    explicit SessionModel(Application &application, QObject *parent = nullptr);
    explicit SessionModel(AccountServices services, QObject *parent = nullptr);

    Phase phase() const;
    /// The keychain keeps the start waiting.
    bool waitingOnKeychain() const { return m_services.auth.waitingOnKeychain(); }
    /// What the start waits for.
    QString waitingText() const;
    /// The service could not say whose the stored token is; `phase` stays Loading.
    bool verificationFailed() const { return m_services.auth.verificationFailed(); }
    /// Why, in the service's or the network's own words.
    QString verificationMessage() const;
    /// What the keychain did not do as it was asked; empty when all is well or it was read.
    QString notice() const;
    QString userId() const;
    QString userName() const;
    /// The handle, also one saved just now; empty without one.
    QString userHandle() const;
    /// Phone number or e-mail address, whichever the account has; may be empty.
    QString userDetail() const;
    /// The account is tied to one made earlier.
    bool legacyLinked() const;
    bool signingOut() const { return m_signingOut; }
    /// What signing out will do, for the question before it.
    QString signOutText() const;
    /// Set after a provider made a new account although the person may have an older one; else empty.
    QString newAccountTitle() const;
    QString newAccountAdvice() const;
    QString newAccountClose() const;
    SignInModel *signIn();
    GuestModel *guest();
    HandleModel *handle();

    /// Three attempts more, when verification had failed.
    Q_INVOKABLE void retryVerification();
    /// Ends the session here and asks the keychain to forget it; `notice` says when it did not.
    Q_INVOKABLE void signOut();
    Q_INVOKABLE void closeNotice();
    Q_INVOKABLE void closeNewAccountNotice();

Q_SIGNALS:
    void changed();

private:
    void onPhase();
    void say(const QString &notice);
    void onGeneration();
    QCoro::Task<> watchSignOut();

    AccountServices m_services;
    SignInModel *m_signIn = nullptr; ///< this and the next are children, made when first asked for
    GuestModel *m_guest = nullptr;
    HandleModel *m_handle = nullptr;
    std::optional<LoginModel::NewAccountNotice> m_newAccount;
    QString m_savedHandle;
    QString m_notice; ///< of its own, before what the sign-in says
    bool m_noticeClosed = false;
    bool m_signingOut = false;
};

} // namespace lmp
