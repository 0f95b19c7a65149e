#pragma once

#include "app/Application.h"
#include "terminal/CommandLine.h"
#include "terminal/ExitCode.h"
#include "terminal/StandardInput.h"

namespace lmp {

/// `lumenpair sign-in`: one of the ways in, or a few rounds as a guest.
///
/// Free of state, UI thread; the pointers outlive the task. Secrets come from the prompt or, in a pipe, one a line.
class SignInCommand {
public:
    static QCoro::Task<ExitCode> run(Application *application, Console *console, StandardInput *input,
                                     CommandLine line);
};

} // namespace lmp
