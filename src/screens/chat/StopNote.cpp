#include "screens/chat/StopNote.h"

#include "core/Detach.h"

#include <QPointer>

namespace lmp {

namespace {

constexpr std::chrono::seconds timeToRead{6};

} // namespace

void StopNote::reset() {
    m_stop.request_stop();
    m_stop = {};
    m_read = false;
}

void StopNote::begin() {
    reset();
    detach(wait(m_stop.get_token()), "StopNote::wait");
}

QCoro::Task<> StopNote::wait(std::stop_token stop) {
    const QPointer self(this);
    const bool passed = co_await m_clock.sleep(timeToRead, stop);
    if (!self || !passed || stop.stop_requested())
        co_return;
    m_read = true;
    Q_EMIT read();
}

} // namespace lmp
