#pragma once

#include "dev/DevProcess.h"

namespace lmp {

/// A command run to its end: what it printed, and how it ended.
struct DevRun {
    DevProcess::Exit exit;
    QByteArray output;     ///< standard output as it came
    QString errorText;     ///< the last 4,000 characters of standard error, without colour codes
    bool timedOut = false; ///< it was ended because it took too long
    bool tooLarge = false; ///< it was ended because it printed more than `maxOutput`

    bool isSuccess() const { return exit.isSuccess() && !timedOut && !tooLarge; }

    static constexpr qsizetype maxOutput = 64 * 1024 * 1024;

    /// Starts `command` with its standard input closed, collects what it prints and waits for its end; the watchdog
    /// ends it once `timeout` has passed. Fails only when the command could not be started. Any thread with an event
    /// loop; finding and starting happen on the thread pool.
    static QCoro::Task<std::expected<DevRun, DevProcess::Failure>>
    toCompletion(DevProcess::Command command, std::chrono::milliseconds timeout, std::stop_token stop = {});
};

} // namespace lmp
