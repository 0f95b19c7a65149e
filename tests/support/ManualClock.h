#pragma once

#include "platform/Clock.h"

#include <QObject>

#include <list>
#include <memory>

namespace lmp {

/// A clock whose hands the test turns. Sleeps resume through the event loop, as real ones do.
class ManualClock : public Clock {
public:
    QDateTime now() const override { return m_now; }
    std::chrono::nanoseconds monotonic() const override { return m_monotonic; }
    QCoro::Task<bool> sleep(std::chrono::milliseconds duration, std::stop_token stop) override;

    /// Turns both hands and wakes whoever is due.
    void advance(std::chrono::milliseconds by);
    /// How many sleep now.
    int sleepers() const { return int(m_sleepers->size()); }

private:
    struct Sleeper {
        std::chrono::nanoseconds due;
        std::shared_ptr<QObject> wake; ///< its name change wakes the sleeper
    };

    QDateTime m_now = QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5), Qt::UTC);
    std::chrono::nanoseconds m_monotonic{0};
    /// Shared with those who sleep: the last may wake when the clock is gone.
    std::shared_ptr<std::list<Sleeper>> m_sleepers = std::make_shared<std::list<Sleeper>>();
};

} // namespace lmp
