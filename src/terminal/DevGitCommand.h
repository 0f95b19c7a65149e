#pragma once

#include "terminal/CommandLine.h"
#include "terminal/Console.h"
#include "terminal/ExitCode.h"

#include <QCoroTask>

namespace lmp {

/// `lumenpair dev git` and `lumenpair dev worktree`: what the workbench sees of a repository. UI thread; the console
/// outlives them.
class DevGitCommand {
public:
    /// @param line what is to be shown, and of which repository
    static QCoro::Task<ExitCode> show(Console *console, CommandLine line);
    static QCoro::Task<ExitCode> newWorktree(Console *console, CommandLine line);
};

} // namespace lmp
