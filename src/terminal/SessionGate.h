#pragma once

#include "app/Application.h"
#include "terminal/Console.h"
#include "terminal/ExitCode.h"

namespace lmp {

/// Lets a command through once it is known who is there.
///
/// Free of state, UI thread; the application and the console outlive the task.
class SessionGate {
public:
    /// Waits for the start of the session. Against the program's own sandbox it signs in to a local account by itself
    /// and says so. A token that could not be verified for another reason than 401 is let through.
    /// @return nothing when the command may go on, else how it ends
    static QCoro::Task<std::optional<ExitCode>> pass(Application *application, Console *console);
};

} // namespace lmp
