#pragma once

#include <coroutine>
#include <functional>
#include <mutex>
#include <utility>

class QObject;

namespace lmp {

/// The one coroutine that waits at one end of a Channel, and the thread on which it goes on.
///
/// Owned by the channel and guarded by its lock. Resuming goes through the waiting thread's event loop, never through
/// the call that brought the news.
class ChannelSide {
public:
    ChannelSide() = default;
    ~ChannelSide();
    ChannelSide(const ChannelSide &) = delete;
    ChannelSide &operator=(const ChannelSide &) = delete;

    bool isWaiting() const { return m_handle != nullptr; }
    /// The calling thread's coroutine waits from now on.
    void wait(std::coroutine_handle<> handle);
    /// The coroutine is gone or goes on by itself.
    /// @return it
    std::coroutine_handle<> take() {
        m_posted = false;
        return std::exchange(m_handle, nullptr);
    }
    /// Goes on with the coroutine, if there is one, on its own thread and without the lock.
    void resume(std::unique_lock<std::mutex> &guard);
    /// Runs `call` on the thread of the coroutine that waits; does nothing while none does or while a call is still
    /// to come. The call either takes the coroutine or says that it keeps waiting.
    void post(std::function<void()> call);
    void keepWaiting() { m_posted = false; }

private:
    void dropReceiver();

    std::coroutine_handle<> m_handle;
    bool m_posted = false;
    QObject *m_receiver = nullptr; ///< of the thread that waited last; it takes the queued calls
};

} // namespace lmp
