#pragma once

#include <QTimer>

#include <chrono>
#include <coroutine>
#include <memory>
#include <optional>
#include <stop_token>

namespace lmp {

/// What a coroutine waits on for a sleep that can be stopped.
///
/// Lives in the coroutine's frame; the timer belongs to the calling thread, and a stop requested on another thread is
/// queued to it, so the coroutine always resumes on its own thread and never inside `request_stop()`.
class SleepAwaiter {
public:
    SleepAwaiter(std::chrono::milliseconds duration, std::stop_token stop);
    ~SleepAwaiter();
    SleepAwaiter(const SleepAwaiter &) = delete;
    SleepAwaiter &operator=(const SleepAwaiter &) = delete;

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> handle);
    /// @return true when the time has passed, false when it was stopped.
    bool await_resume() const noexcept { return m_elapsed; }

private:
    struct OnStop {
        QTimer *timer;
        void operator()() const;
    };

    std::chrono::milliseconds m_duration;
    std::stop_token m_stop;
    // Shared with the queued stop, which may arrive after the frame is gone.
    std::shared_ptr<QTimer> m_timer;
    std::optional<std::stop_callback<OnStop>> m_onStop;
    bool m_elapsed = true;
};

} // namespace lmp
