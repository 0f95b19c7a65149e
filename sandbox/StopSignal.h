// Tells every waiting thread of one server that it is being stopped. Owned by SandboxServices; any thread.
#pragma once
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace lmp::sandbox {

class StopSignal {
public:
    void stop() {
        {
            const std::lock_guard lock(m_mutex);
            m_stopped = true;
        }
        m_condition.notify_all();
    }

    bool stopped() const {
        const std::lock_guard lock(m_mutex);
        return m_stopped;
    }

    /// Waits for `duration`; true when the server is being stopped, at once then.
    bool wait(std::chrono::milliseconds duration) const {
        std::unique_lock lock(m_mutex);
        return m_condition.wait_for(lock, duration, [this] { return m_stopped; });
    }

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_condition;
    bool m_stopped = false;
};

} // namespace lmp::sandbox
