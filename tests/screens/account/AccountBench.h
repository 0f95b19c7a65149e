#pragma once

#include "core/WebAuthPresenter.h"
#include "identity/SafetyGateStore.h"
#include "platform/ExternalOpener.h"
#include "screens/account/CrisisResourcesModel.h"
#include "screens/account/SafetyModel.h"
#include "screens/account/SessionModel.h"
#include "support/FakeKeychain.h"
#include "support/ManualClock.h"
#include "support/StubServer.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QStringList>

class QQmlEngine;

namespace lmp {

/// The real models of the account's screens on a scripted service, keychain, clock and opener, for tests in QML.
///
/// One for each engine. `restart` makes everything anew; what is scripted before it is gone.
class AccountBench : public QObject {
    Q_OBJECT
    Q_PROPERTY(lmp::SessionModel *session READ session NOTIFY restarted)
    Q_PROPERTY(lmp::SafetyModel *safety READ safety NOTIFY restarted)
    Q_PROPERTY(lmp::CrisisResourcesModel *resources READ resources NOTIFY restarted)
    Q_PROPERTY(QStringList opened READ opened NOTIFY openedChanged)
public:
    AccountBench();
    ~AccountBench() override;

    SessionModel *session() { return m_parts->session.get(); }
    SafetyModel *safety() { return m_parts->safety.get(); }
    CrisisResourcesModel *resources() { return m_parts->resources.get(); }
    QStringList opened() const { return m_parts->opener.opened; }

    /// Signed out, with a service that answers nothing yet. @param providers those it has: "google", "apple", both
    Q_INVOKABLE void restart(const QString &providers = {});
    /// Not begun yet; `restore` begins it.
    Q_INVOKABLE void restartClosed();
    /// Every request whose path begins with `path` is answered so.
    Q_INVOKABLE void answer(const QString &path, int status, const QString &body);
    /// Requests of `path` wait for `release`.
    Q_INVOKABLE void hold(const QString &path);
    Q_INVOKABLE void release(int status, const QString &body);
    /// How many requests of `path` there were.
    Q_INVOKABLE int count(const QString &path) const;
    /// The body of the last of them.
    Q_INVOKABLE QString sent(const QString &path) const;
    /// Whether any of them carried a session token.
    Q_INVOKABLE bool sentToken(const QString &path) const;
    /// Turns the clock's hands.
    Q_INVOKABLE void advance(int milliseconds);
    Q_INVOKABLE int sleepers() const { return m_parts->clock.sleepers(); }

    Q_INVOKABLE void keychainHolds(const QString &token);
    Q_INVOKABLE QString keychainItem() const { return m_parts->keychain.items.value(AuthStore::tokenKey); }
    Q_INVOKABLE void keychainHangs(bool hangs);
    Q_INVOKABLE void keychainFails(bool fails);
    /// Begins as the program does, with what the keychain holds.
    Q_INVOKABLE void restore() { m_parts->auth.restore(); }
    Q_INVOKABLE void signIn(const QString &userJson);

    /// Whether something takes links and numbers.
    Q_INVOKABLE static QString clipboard() { return QGuiApplication::clipboard()->text(); }
    Q_INVOKABLE void openerWorks(bool works) { m_parts->opener.works = works; }
    /// @param answer of the twin, with its safety blocks
    Q_INVOKABLE void safetyArrives(const QString &answer);

    /// Tells the engine of the modules and of this type, as Lumenpair.AccountBench.
    static void provide(QQmlEngine &engine);

Q_SIGNALS:
    void restarted();
    void openedChanged();

private:
    struct Opener : ExternalOpener {
        bool open(const QUrl &url) override {
            opened.push_back(url.toString(QUrl::FullyEncoded));
            return works;
        }
        bool works = true;
        QStringList opened;
    };
    /// A sheet that ends with a token at once.
    struct Apple : AppleSignInCoordinator {
        bool isAvailable() const override { return true; }
        QCoro::Task<Outcome> present() override { co_return Credential{QStringLiteral("apple-token"), {}}; }
    };
    struct Parts {
        explicit Parts(const QString &providers);

        StubServer server;
        ManualClock clock;
        FakeKeychain keychain;
        Opener opener;
        SafetyGateStore store;
        AuthStore auth;
        WebAuthPresenter webAuth;
        std::unique_ptr<GoogleSignIn> google;
        std::unique_ptr<Apple> apple;
        std::unique_ptr<SessionModel> session;
        std::unique_ptr<SafetyModel> safety;
        std::unique_ptr<CrisisResourcesModel> resources;
        QList<QPointer<QTcpSocket>> held;
    };

    void replace(std::unique_ptr<Parts> next);

    std::unique_ptr<Parts> m_parts;
    std::vector<std::unique_ptr<Parts>> m_past; ///< screens of the test before may still look at theirs
};

} // namespace lmp
