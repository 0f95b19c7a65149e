#include "identity/SafetyGateStore.h"

namespace lmp {

SafetyGateStore::SafetyGateStore(QObject *parent)
    : QObject(parent) {}

void SafetyGateStore::show(CrisisSignal signal) {
    m_crisis = std::move(signal);
    Q_EMIT crisisChanged();
}

void SafetyGateStore::show(ContinuousUseNotice notice) {
    m_continuousUse = std::move(notice);
    Q_EMIT continuousUseChanged();
}

void SafetyGateStore::closeCrisis() {
    if (!m_crisis)
        return;
    m_crisis.reset();
    Q_EMIT crisisChanged();
}

void SafetyGateStore::closeContinuousUse() {
    if (!m_continuousUse)
        return;
    m_continuousUse.reset();
    Q_EMIT continuousUseChanged();
}

} // namespace lmp
