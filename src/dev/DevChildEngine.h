#pragma once

#include "dev/DevEventQueue.h"
#include "dev/DevProcess.h"

namespace lmp {

/// An engine whose agent is a child of this program that speaks in lines.
///
/// As every engine it lives on its executor. It starts the child, reads it, holds it back when nobody takes the events,
/// and ends it: with `stop`, and whenever nothing more can come from it. What the lines mean is the derived engine's.
class DevChildEngine : public DevEngine {
public:
    static constexpr std::chrono::milliseconds stopGrace{3000};

protected:
    /// Why nothing more comes.
    enum class End {
        Output, ///< the child has closed its output, and is gone
        TooLong ///< a line without end
    };

    using DevEngine::DevEngine;

    /// Starts the child and begins to read it. Ends at once, with a failure, when the session is stopped meanwhile.
    QCoro::Task<Outcome<Done>> launch(DevProcess::Command command);
    /// @return false when the child does not take any more; the line is dropped then
    bool writeLine(QByteArrayView line);

    virtual void onLine(QByteArrayView line) = 0;
    /// The stream ends after what this tells. `m_process` is gone.
    /// @param last what the child has said last, on its standard error, and what else there is to know of its end
    virtual void onEnd(End why, const QString &last) = 0;
    /// Derived engines do their part and call this.
    void onStop() override;

    std::shared_ptr<DevProcess> m_process; ///< while it runs
    DevEventQueue m_events;
    bool m_stopped = false;

private:
    QCoro::Task<> read(std::shared_ptr<DevProcess> process);

    std::stop_source m_reading;
};

} // namespace lmp
