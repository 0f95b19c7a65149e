#pragma once

#include <QCoroTask>
#include <QDateTime>

#include <chrono>
#include <stop_token>

namespace lmp {

/// The time as everybody sees it, behind one interface so that tests turn the hands themselves.
///
/// Owned by the application and outlives every store. Called on the UI thread; `sleep` resumes on the thread that
/// called it, which must run an event loop. Nothing here fails.
class Clock {
public:
    Clock() = default;
    Clock(const Clock &) = delete;
    Clock &operator=(const Clock &) = delete;
    virtual ~Clock() = default;

    /// The wall clock in UTC. It may jump; never measure a duration with it.
    virtual QDateTime now() const = 0;

    /// Time since an arbitrary start, never going back.
    virtual std::chrono::nanoseconds monotonic() const = 0;

    /// Waits for `duration` of monotonic time.
    /// @return true when the time has passed, false when `stop` was requested first (at once, through the event loop).
    virtual QCoro::Task<bool> sleep(std::chrono::milliseconds duration, std::stop_token stop) = 0;
};

} // namespace lmp
