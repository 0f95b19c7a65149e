#pragma once

#include "dev/DevEngine.h"

#include <deque>

namespace lmp {

/// What an engine has to tell, in order, on its way to a consumer that may be slow.
///
/// Owned by an engine, on its executor. Whoever reads what the agent says takes a handful of lines at a time: `hold`,
/// their events, `deliver`, which waits for the consumer and so holds the agent back. What is told beside it never
/// waits, and comes behind what was told before. After `close` nothing is told any more.
class DevEventQueue {
public:
    /// Bytes that may wait for a slow consumer before the agent is held back.
    static constexpr std::size_t room = 4 * 1024 * 1024;
    /// What an event weighs beside the text in it.
    static constexpr std::size_t eventCost = 256;

    DevEngine::Session session() const { return {m_events, m_withdrawn}; }

    void tell(DevEvent event);
    /// The question with this id need not be answered any more.
    void withdraw(QString id);
    void close();

    /// From now on what is told is kept for `deliver`.
    void hold() { m_holding = true; }
    /// The next event that is told comes of so many bytes.
    void weigh(std::size_t bytes) { m_bytes = bytes; }
    std::size_t held() const { return m_held.size(); }
    /// Hands on what was kept, and what is told meanwhile.
    QCoro::Task<> deliver();

private:
    struct Held {
        DevEvent event;
        std::size_t weight;
    };

    Channel<DevEvent> m_events{room};
    Channel<QString> m_withdrawn{DevEngine::maxWithdrawn};
    std::deque<Held> m_held;
    std::size_t m_bytes = 0;
    bool m_holding = false;
    bool m_closed = false;
};

} // namespace lmp
