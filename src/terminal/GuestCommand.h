#pragma once

#include "app/Application.h"
#include "terminal/Console.h"
#include "terminal/ExitCode.h"
#include "terminal/StandardInput.h"

namespace lmp {

/// `lumenpair sign-in --guest`: a few rounds without an account, one line each. Free of state, UI thread; the pointers
/// outlive the task.
class GuestCommand {
public:
    static QCoro::Task<ExitCode> run(Application *application, Console *console, StandardInput *input);
};

} // namespace lmp
