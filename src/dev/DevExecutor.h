#pragma once

#include "core/Detach.h"

#include <QObject>
#include <QThread>

#include <coroutine>
#include <memory>
#include <optional>

namespace lmp {

/// One thread with an event loop, on which an engine keeps everything it has; and the way there and back for the
/// coroutines of other threads.
///
/// Owned by its engine. A task of QCoro must live on one thread, so work that is sent here is a task of this thread
/// alone, and only its result travels: the caller resumes on its own thread, through its event loop. Nothing fails.
class DevExecutor {
public:
    /// @param name of the thread, for debuggers
    explicit DevExecutor(const QString &name);
    ~DevExecutor();
    DevExecutor(const DevExecutor &) = delete;
    DevExecutor &operator=(const DevExecutor &) = delete;

    /// Lives on the executor's thread: parent of whatever must.
    QObject *context() const { return m_context; }
    bool isCurrent() const { return QThread::currentThread() == &m_thread; }

    /// Awaits `work()`, a QCoro::Task with a value, as it runs on the executor.
    ///
    /// `work` runs even when the waiting coroutine is gone by then. Must not be called after `finish`.
    template <class F>
    auto run(F work) {
        return Awaiter<F>(this, std::move(work));
    }
    /// Starts a task on the executor's own thread, called there; `finish` waits for it.
    void spawn(QCoro::Task<> task, const char *what);
    /// Calls a function there, soon. Any thread.
    template <class F>
    void post(F call) {
        QMetaObject::invokeMethod(m_context, std::move(call), Qt::QueuedConnection);
    }

    /// Calls `last` there and returns when all work has ended; whatever waits must end because of it. Not called on the
    /// executor.
    void finish(std::function<void()> last);

private:
    template <class F>
    class Awaiter;
    template <class F, class Wait>
    static QCoro::Task<> drive(F work, std::shared_ptr<Wait> wait);
    void begin() { ++m_running; }
    void end();
    static QCoro::Task<> counted(DevExecutor *self, QCoro::Task<> task);

    QThread m_thread;
    QObject *m_context = nullptr;
    std::atomic<int> m_running = 0; ///< works not yet ended, waiting ones included
    bool m_finishing = false;       ///< the executor's thread only
};

template <class F>
class DevExecutor::Awaiter {
public:
    using Value = typename std::invoke_result_t<F>::value_type;

    Awaiter(DevExecutor *executor, F work)
        : m_executor(executor)
        , m_work(std::move(work)) {}
    ~Awaiter() { m_wait->handle = nullptr; }
    Awaiter(const Awaiter &) = delete;
    Awaiter &operator=(const Awaiter &) = delete;

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> handle) {
        m_wait->handle = handle;
        m_executor->begin();
        m_executor->post([executor = m_executor, work = std::move(m_work), wait = m_wait]() mutable {
            detach(counted(executor, drive(std::move(work), std::move(wait))), "DevExecutor");
        });
    }
    Value await_resume() { return *std::move(m_wait->value); }

private:
    friend class DevExecutor;
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

    DevExecutor *m_executor;
    F m_work;
    std::shared_ptr<Wait> m_wait = std::make_shared<Wait>();
};

template <class F, class Wait>
QCoro::Task<> DevExecutor::drive(F work, std::shared_ptr<Wait> wait) {
    auto value = std::make_shared<decltype(wait->value)>(co_await work());
    QMetaObject::invokeMethod(
        wait->receiver,
        [wait, value] {
            wait->value = std::move(*value);
            if (const auto waiting = std::exchange(wait->handle, nullptr))
                waiting.resume();
        },
        Qt::QueuedConnection);
}

} // namespace lmp
