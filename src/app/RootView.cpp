#include "app/RootView.h"

#include "platform/Log.h"

#include <QPointer>
#include <QStringList>

namespace lmp {

using namespace Qt::StringLiterals;

const QString RootView::migrationSeenKey = u"lmp.root.migration-seen.v1"_s;
const QString RootView::onboardingSeenKey = u"lmp.root.onboarding-seen.v1"_s;
const QString RootView::handleSetupSeenKey = u"lmp.root.handle-setup-seen.v1"_s;

namespace {

/// A machine of many accounts must not make the record grow for ever.
constexpr qsizetype mostAccounts = 100;

} // namespace

RootView::RootView(AuthStore &auth, Settings &settings, QObject *parent)
    : QObject(parent)
    , m_auth(auth)
    , m_settings(settings)
    , m_migrationSeenRaw(load(migrationSeenKey))
    , m_onboardingSeenRaw(load(onboardingSeenKey))
    , m_handleSetupSeenRaw(load(handleSetupSeenKey))
    , m_stage(choose()) {
    connect(&m_auth, &AuthStore::phaseChanged, this, &RootView::update);
}

QString RootView::load(const QString &key) const {
    return QString::fromUtf8(m_settings.value(key).value_or(QByteArray()));
}

RootView::Stage RootView::choose() const {
    switch (m_auth.phase()) {
    case AuthStore::Phase::loading:
        return Stage::Launch;
    case AuthStore::Phase::signedOut:
        return Stage::SignedOut;
    case AuthStore::Phase::signedIn:
        break;
    }
    if (!seen(m_migrationSeenRaw))
        return Stage::Migration;
    if (!seen(m_onboardingSeenRaw))
        return Stage::Onboarding;
    const bool hasHandle = m_auth.user() && !m_auth.user()->handle.value_or(QString()).isEmpty();
    return hasHandle || seen(m_handleSetupSeenRaw) ? Stage::Shell : Stage::HandleSetup;
}

void RootView::update() {
    const Stage stage = choose();
    const QPointer self(this);
    if (stage != Stage::Migration)
        setShowPrivacyFromNotice(false);
    if (self && std::exchange(m_stage, stage) != stage)
        Q_EMIT stageChanged();
}

bool RootView::seen(const QString &raw) const {
    return raw.split(u'\n').contains(m_auth.accountKey());
}

void RootView::setShowPrivacyFromNotice(bool show) {
    if (std::exchange(m_showPrivacyFromNotice, show) != show)
        Q_EMIT showPrivacyFromNoticeChanged();
}

void RootView::finishMigrationNotice() {
    finish(Stage::Migration, migrationSeenKey, m_migrationSeenRaw);
}

void RootView::finishOnboarding() {
    finish(Stage::Onboarding, onboardingSeenKey, m_onboardingSeenRaw);
}

void RootView::finishHandleSetup() {
    finish(Stage::HandleSetup, handleSetupSeenKey, m_handleSetupSeenRaw);
}

void RootView::finish(Stage stage, const QString &key, QString &raw) {
    // A second click on a button that is on its way out must not pass over the next stage.
    if (m_stage != stage)
        return;
    QStringList accounts = raw.split(u'\n', Qt::SkipEmptyParts);
    accounts.push_back(m_auth.accountKey());
    if (accounts.size() > mostAccounts)
        accounts = accounts.sliced(accounts.size() - mostAccounts);
    raw = accounts.join(u'\n');
    if (!m_settings.setValue(key, raw.toUtf8()))
        qCWarning(logApplication) << "what was seen at the start could not be kept";
    update();
}

} // namespace lmp
