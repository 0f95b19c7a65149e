#pragma once

#include "core/AuthStore.h"
#include "platform/Settings.h"

#include <QObject>

namespace lmp {

/// Decides what fills a window: the launch screen, signing in, what a new person sees first, or the shell.
///
/// One for the process, shared by its windows; UI thread. What somebody has seen is kept for each account, since a
/// machine may have several; where it cannot be kept, it holds for this run.
class RootView : public QObject {
    Q_OBJECT
    Q_PROPERTY(lmp::RootView::Stage stage READ stage NOTIFY stageChanged)
    Q_PROPERTY(bool showPrivacyFromNotice READ showPrivacyFromNotice WRITE setShowPrivacyFromNotice NOTIFY
                   showPrivacyFromNoticeChanged)
public:
    enum class Stage {
        Launch,
        SignedOut,
        Migration, ///< the notice that accounts have moved
        Onboarding,
        HandleSetup, ///< an account without a handle, once; it may be passed over
        Shell
    };
    Q_ENUM(Stage)

    static const QString migrationSeenKey;
    static const QString onboardingSeenKey;
    static const QString handleSetupSeenKey;

    /// @param auth, settings outlive this
    RootView(AuthStore &auth, Settings &settings, QObject *parent = nullptr);

    Stage stage() const { return m_stage; }
    /// The ids of the accounts that have seen each, one a line, the latest last.
    const QString &migrationSeenRaw() const { return m_migrationSeenRaw; }
    const QString &onboardingSeenRaw() const { return m_onboardingSeenRaw; }

    /// Whether the privacy page lies over the migration notice.
    bool showPrivacyFromNotice() const { return m_showPrivacyFromNotice; }
    void setShowPrivacyFromNotice(bool show);

    /// The person has been through the stage that is shown, and goes on to the next. Nothing happens in any other.
    Q_INVOKABLE void finishMigrationNotice();
    Q_INVOKABLE void finishOnboarding();
    Q_INVOKABLE void finishHandleSetup();

Q_SIGNALS:
    void stageChanged();
    void showPrivacyFromNoticeChanged();

private:
    Stage choose() const;
    void update();
    QString load(const QString &key) const;
    void finish(Stage stage, const QString &key, QString &raw);
    bool seen(const QString &raw) const;

    AuthStore &m_auth;
    Settings &m_settings;
    QString m_migrationSeenRaw;
    QString m_onboardingSeenRaw;
    QString m_handleSetupSeenRaw;
    Stage m_stage = Stage::Launch;
    bool m_showPrivacyFromNotice = false;
};

} // namespace lmp
