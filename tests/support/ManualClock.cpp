#include "support/ManualClock.h"

#include "platform/SleepAwaiter.h"

#include <coroutine>

namespace lmp {

namespace {

struct WakeAwaiter {
    std::shared_ptr<QObject> wake;
    std::stop_token stop;

    bool await_ready() const { return false; }
    void await_suspend(std::coroutine_handle<> handle) {
        QObject::connect(
            wake.get(), &QObject::objectNameChanged, wake.get(), [handle] { handle.resume(); },
            static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
        m_onStop.emplace(stop, [object = wake.get()] {
            QMetaObject::invokeMethod(
                object, [object] { object->setObjectName(QStringLiteral("stopped")); }, Qt::QueuedConnection);
        });
    }
    bool await_resume() const { return wake->objectName() == QStringLiteral("due"); }

    std::optional<std::stop_callback<std::function<void()>>> m_onStop = {};
};

} // namespace

QCoro::Task<bool> ManualClock::sleep(std::chrono::milliseconds duration, std::stop_token stop) {
    const auto wake = std::shared_ptr<QObject>(new QObject, [](QObject *object) { object->deleteLater(); });
    const auto everybody = m_sleepers;
    everybody->push_back({m_monotonic + duration, wake});
    WakeAwaiter awaiter{wake, std::move(stop)};
    const bool due = co_await awaiter;
    everybody->remove_if([&](const Sleeper &sleeper) { return sleeper.wake == wake; });
    co_return due;
}

void ManualClock::advance(std::chrono::milliseconds by) {
    m_monotonic += by;
    m_now = m_now.addMSecs(by.count());
    for (const Sleeper &sleeper : *m_sleepers) {
        if (sleeper.due <= m_monotonic && sleeper.wake->objectName().isEmpty())
            sleeper.wake->setObjectName(QStringLiteral("due"));
    }
}

} // namespace lmp
