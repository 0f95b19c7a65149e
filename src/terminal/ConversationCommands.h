#pragma once

#include "app/Application.h"
#include "terminal/Console.h"
#include "terminal/ExitCode.h"

namespace lmp {

/// `lumenpair conversations list` and `show ID`. Free of state, UI thread; the pointers outlive the task.
class ConversationCommands {
public:
    /// What the service has and what this machine alone has.
    static QCoro::Task<ExitCode> list(Application *application, Console *console);
    static QCoro::Task<ExitCode> show(Application *application, Console *console, QString id);
};

} // namespace lmp
