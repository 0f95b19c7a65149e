#pragma once

#include <QBasicTimer>
#include <QObject>
#include <QQmlIncubationController>

namespace lmp {

/// Makes what screens want made when there is time, a few milliseconds between two events. An engine without one makes
/// all of it at once.
///
/// Owned by whoever has the engine, for all of its windows; UI thread.
class IdleIncubation : public QObject, public QQmlIncubationController {
    Q_OBJECT
protected:
    void incubatingObjectCountChanged(int count) override;
    void timerEvent(QTimerEvent *event) override;

private:
    QBasicTimer m_timer;
};

} // namespace lmp
