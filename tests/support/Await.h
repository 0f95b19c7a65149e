#pragma once

#include <QCoroTask>
#include <QDeadlineTimer>
#include <QEventLoop>

#include <functional>

namespace lmp {

/// Runs the event loop until the task is done.
template <class T>
T await(QCoro::Task<T> task) {
    return QCoro::waitFor(std::move(task));
}

/// Runs the event loop until `condition` holds. @return false after `limit` ms without it: a test that hangs says so.
inline bool eventually(const std::function<bool()> &condition, int limit = 10'000) {
    const QDeadlineTimer deadline(limit);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 10);
    }
    return true;
}

/// Lets everything that is queued now happen.
inline void settle() {
    for (int turn = 0; turn < 8; ++turn) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }
}

} // namespace lmp
