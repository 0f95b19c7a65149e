#pragma once

#include <QObject>
#include <QThreadPool>

#include <coroutine>
#include <memory>
#include <optional>
#include <utility>

namespace lmp {

/// Runs a function on the thread pool while a coroutine waits, and resumes it on the thread it waits on.
///
/// The function must not throw and must own what it touches: it may outlive the coroutine.
template <class F>
class PoolAwaiter {
public:
    using Value = std::invoke_result_t<F>;

    /// @param pool where it runs; a pool of one thread runs things in the order in which they were given
    explicit PoolAwaiter(F work, QThreadPool *pool = QThreadPool::globalInstance())
        : m_work(std::move(work))
        , m_pool(pool) {}

    ~PoolAwaiter() { m_wait->handle = nullptr; }
    PoolAwaiter(const PoolAwaiter &) = delete;
    PoolAwaiter &operator=(const PoolAwaiter &) = delete;

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> handle) {
        m_wait->handle = handle;
        m_pool->start([work = std::move(m_work), wait = m_wait]() mutable {
            auto value = std::make_shared<Value>(work());
            // Handed over whole: a thread that waits may end as soon as it has what it waited for, and would then no
            // longer delete the receiver for us.
            QObject *receiver = wait->receiver;
            QMetaObject::invokeMethod(
                receiver,
                [wait = std::move(wait), value = std::move(value)] {
                    wait->value = std::move(*value);
                    if (const auto waiting = std::exchange(wait->handle, nullptr))
                        waiting.resume();
                },
                Qt::QueuedConnection);
        });
    }
    Value await_resume() { return *std::move(m_wait->value); }

private:
    /// Shared with the work, which may end after the frame is gone. All of it belongs to the waiting thread.
    struct Wait {
        std::coroutine_handle<> handle;
        std::optional<Value> value;
        QObject *receiver = new QObject;
        Wait() = default;
        Wait(const Wait &) = delete;
        Wait &operator=(const Wait &) = delete;
        ~Wait() { receiver->deleteLater(); }
    };

    F m_work;
    QThreadPool *m_pool;
    std::shared_ptr<Wait> m_wait = std::make_shared<Wait>();
};

} // namespace lmp
