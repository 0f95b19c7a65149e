#include "app/MacAppLifecycle.h"

#include <QCoreApplication>
#include <QEvent>

namespace lmp {

MacAppLifecycle::MacAppLifecycle(MacQuitCoordinator &coordinator, QObject *parent)
    : QObject(parent)
    , m_coordinator(coordinator) {
    connect(&*m_signals, &SignalWatcher::caught, this, &MacAppLifecycle::quit);
    connect(&m_coordinator, &MacQuitCoordinator::terminationAllowed, this, [this] { m_signals.reset(); });
    QCoreApplication::instance()->installEventFilter(this);
}

void MacAppLifecycle::quit() {
    m_coordinator.requestTermination();
}

bool MacAppLifecycle::mayCloseLastWindow() {
    if (!m_coordinator.resolved())
        m_coordinator.requestTermination();
    return m_coordinator.resolved();
}

void MacAppLifecycle::saveForSession() {
    m_coordinator.saveMeanwhile();
}

bool MacAppLifecycle::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() != QEvent::Quit || watched != QCoreApplication::instance() || m_coordinator.resolved())
        return QObject::eventFilter(watched, event);
    m_coordinator.requestTermination();
    event->ignore();
    return true;
}

} // namespace lmp
