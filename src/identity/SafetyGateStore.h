#pragma once

#include "identity/ContinuousUseNotice.h"
#include "identity/CrisisSignal.h"

#include <QObject>

namespace lmp {

/// The safety cards that wait to be seen: the latest of each kind, over whatever screen is open.
///
/// Owned by the application for its whole life and shared by chat and calls; UI thread. Nothing fails; a card leaves
/// only when somebody closes it.
class SafetyGateStore : public QObject {
    Q_OBJECT
public:
    explicit SafetyGateStore(QObject *parent = nullptr);

    const std::optional<CrisisSignal> &crisis() const { return m_crisis; }
    const std::optional<ContinuousUseNotice> &continuousUse() const { return m_continuousUse; }

    /// Puts the signal in the place of the one before. The signal is emitted each time, also for an equal one: the
    /// service has said it again.
    void show(CrisisSignal signal);
    void show(ContinuousUseNotice notice);
    void closeCrisis();
    void closeContinuousUse();

Q_SIGNALS:
    void crisisChanged();
    void continuousUseChanged();

private:
    std::optional<CrisisSignal> m_crisis;
    std::optional<ContinuousUseNotice> m_continuousUse;
};

} // namespace lmp
