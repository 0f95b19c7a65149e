#include "dev/DevEventQueue.h"

namespace lmp {

void DevEventQueue::tell(DevEvent event) {
    // Text takes twice the bytes that it came in.
    const auto weight = std::min(2 * std::exchange(m_bytes, 0) + eventCost, room);
    if (m_closed)
        return;
    if (m_holding)
        m_held.push_back({std::move(event), weight});
    else
        m_events.tryPush(event, 0); // there is always room for what weighs nothing
}

void DevEventQueue::withdraw(QString id) {
    m_withdrawn.tryPush(id);
}

void DevEventQueue::close() {
    m_closed = true;
    m_held.clear();
    m_events.close();
    m_withdrawn.close();
}

QCoro::Task<> DevEventQueue::deliver() {
    while (!m_held.empty()) {
        Held next = std::move(m_held.front());
        m_held.pop_front();
        co_await m_events.push(std::move(next.event), next.weight);
    }
    m_holding = false;
}

} // namespace lmp
