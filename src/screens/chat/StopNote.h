#pragma once

#include "platform/Clock.h"

#include <QObject>

namespace lmp {

/// Whether what is said of a stopped reply, while that is under way, has been there for long enough to be read.
///
/// Part of a ChatModel, UI thread; the clock outlives it. Nothing fails.
class StopNote : public QObject {
    Q_OBJECT
public:
    explicit StopNote(Clock &clock)
        : m_clock(clock) {}
    ~StopNote() override { m_stop.request_stop(); }

    bool wasRead() const { return m_read; }
    /// Another turn has ended, and what was said of the one before is gone.
    void reset();
    /// It is said from now on.
    void begin();

Q_SIGNALS:
    void read();

private:
    QCoro::Task<> wait(std::stop_token stop);

    Clock &m_clock;
    std::stop_source m_stop;
    bool m_read = false;
};

} // namespace lmp
