#include "platform/SleepAwaiter.h"

namespace lmp {

SleepAwaiter::SleepAwaiter(std::chrono::milliseconds duration, std::stop_token stop)
    : m_duration(duration)
    , m_stop(std::move(stop))
    // The timer may be the receiver of a queued call when the frame dies, so it is left to its event loop.
    , m_timer(new QTimer, [](QTimer *timer) { timer->deleteLater(); }) {
    m_timer->setSingleShot(true);
}

SleepAwaiter::~SleepAwaiter() {
    m_onStop.reset();
    m_timer->stop();
    m_timer->disconnect();
}

void SleepAwaiter::await_suspend(std::coroutine_handle<> handle) {
    QObject::connect(m_timer.get(), &QTimer::timeout, m_timer.get(), [this, handle] {
        m_elapsed = !m_stop.stop_requested();
        m_timer->disconnect();
        handle.resume();
    });
    m_timer->start(m_stop.stop_requested() ? std::chrono::milliseconds(0) : m_duration);
    m_onStop.emplace(m_stop, OnStop{m_timer.get()});
}

void SleepAwaiter::OnStop::operator()() const {
    QMetaObject::invokeMethod(
        timer,
        [timer = timer] {
            if (timer->isActive())
                timer->start(0);
        },
        Qt::QueuedConnection);
}

} // namespace lmp
