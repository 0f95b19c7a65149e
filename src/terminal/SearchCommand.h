#pragma once

#include "app/Application.h"
#include "terminal/CommandLine.h"
#include "terminal/Console.h"
#include "terminal/ExitCode.h"

namespace lmp {

/// `lumenpair search TEXT`: the messages that hold what is looked for, in every conversation of the account.
///
/// Free of state, UI thread; the application and the console outlive the task.
class SearchCommand {
public:
    /// Reads the conversations that the index does not have yet, then asks it. Results go to standard output, the
    /// latest first; what was not looked through is said on standard error.
    static QCoro::Task<ExitCode> run(Application *application, Console *console, CommandLine line);
};

} // namespace lmp
