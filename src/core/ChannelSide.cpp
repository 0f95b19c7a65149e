#include "core/ChannelSide.h"

#include <QObject>
#include <QThread>

namespace lmp {

ChannelSide::~ChannelSide() {
    dropReceiver();
}

void ChannelSide::wait(std::coroutine_handle<> handle) {
    Q_ASSERT(!m_handle);
    if (m_receiver && m_receiver->thread() != QThread::currentThread())
        dropReceiver();
    if (!m_receiver)
        m_receiver = new QObject;
    m_handle = handle;
    m_posted = false;
}

void ChannelSide::resume(std::unique_lock<std::mutex> &guard) {
    const auto handle = take();
    guard.unlock();
    if (handle)
        handle.resume();
}

void ChannelSide::post(std::function<void()> call) {
    if (m_handle && !std::exchange(m_posted, true))
        QMetaObject::invokeMethod(m_receiver, std::move(call), Qt::QueuedConnection);
}

void ChannelSide::dropReceiver() {
    if (!m_receiver)
        return;
    // A thread that has ended runs no event loop any more, so nobody would carry out a deferred deletion.
    const auto *thread = m_receiver->thread();
    if (!thread || thread == QThread::currentThread() || thread->isFinished())
        delete m_receiver;
    else
        m_receiver->deleteLater();
    m_receiver = nullptr;
}

} // namespace lmp
