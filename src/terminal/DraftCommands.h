#pragma once

#include "app/Application.h"
#include "terminal/Console.h"
#include "terminal/ExitCode.h"
#include "terminal/StandardInput.h"

namespace lmp {

/// `lumenpair drafts list`, `show ID` and `discard ID`: what this machine alone holds, conversations that the service
/// does not have and input that was not sent. Free of state, UI thread; the pointers outlive the task.
class DraftCommands {
public:
    /// @param json one record a line
    static QCoro::Task<ExitCode> list(Application *application, Console *console, bool json);
    static QCoro::Task<ExitCode> show(Application *application, Console *console, QString id, bool json);
    /// Removes what `show` shows, after asking. What changed since then stays.
    /// @param sure the person has said so on the command line
    static QCoro::Task<ExitCode> discard(Application *application, Console *console, StandardInput *input, QString id,
                                         bool sure);
    /// Removes the files that are no drafts, after asking; `list` names them.
    static QCoro::Task<ExitCode> discardUnreadable(Application *application, Console *console, StandardInput *input,
                                                   bool sure);
};

} // namespace lmp
