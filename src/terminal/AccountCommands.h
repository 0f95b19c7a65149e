#pragma once

#include "app/Application.h"
#include "terminal/Console.h"
#include "terminal/ExitCode.h"

namespace lmp {

/// `lumenpair whoami` and `lumenpair sign-out`. Free of state, UI thread; both arguments outlive the task.
class AccountCommands {
public:
    static QCoro::Task<ExitCode> whoAmI(Application *application, Console *console);
    static QCoro::Task<ExitCode> signOut(Application *application, Console *console);
};

} // namespace lmp
