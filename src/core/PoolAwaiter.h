#pragma once

#include <QObject>
#include <QThreadPool>

#include <coroutine>
#include <memory>
#include <optional>

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

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> handle) {
        m_handle = handle;
        m_pool->start([work = std::move(m_work), waiting = m_waiting, this]() mutable {
            auto value = std::make_shared<Value>(work());
            // The receiver lives on the waiting thread and dies with the frame; the call is then dropped with it.
            QMetaObject::invokeMethod(
                waiting.get(),
                [this, value] {
                    m_value = std::move(*value);
                    m_handle.resume();
                },
                Qt::QueuedConnection);
        });
    }
    Value await_resume() { return *std::move(m_value); }

private:
    F m_work;
    QThreadPool *m_pool;
    std::coroutine_handle<> m_handle;
    std::optional<Value> m_value;
    std::shared_ptr<QObject> m_waiting{new QObject, [](QObject *object) {
                                           object->deleteLater();
                                       }};
};

} // namespace lmp
