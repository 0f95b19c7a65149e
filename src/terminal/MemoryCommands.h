#pragma once

#include "app/Application.h"
#include "terminal/CommandLine.h"
#include "terminal/Console.h"
#include "terminal/ExitCode.h"
#include "terminal/StandardInput.h"

#include "identity/MemoryCandidateDTO.h"

namespace lmp {

/// `lumenpair memory ...`: the ledger of what the twin remembers. Free of state, UI thread; the pointers outlive the
/// task. What may have been written and is not known ends with `Unknown`, and is not sent again.
class MemoryCommands {
public:
    static QCoro::Task<ExitCode> run(Application *application, Console *console, StandardInput *input,
                                     CommandLine::Memory command);

private:
    using Command = CommandLine::Memory;

    static QCoro::Task<ExitCode> list(Application *application, Console *console, Command command);
    static QCoro::Task<ExitCode> change(Application *application, Console *console, Command command);
    static QCoro::Task<ExitCode> correct(Application *application, Console *console, Command command);
    static QCoro::Task<ExitCode> revert(Application *application, Console *console, Command command);
    static QCoro::Task<ExitCode> forget(Application *application, Console *console, Command command);
    static QCoro::Task<ExitCode> restore(Application *application, Console *console, StandardInput *input,
                                         Command command);
    static QCoro::Task<ExitCode> history(Application *application, Console *console, Command command);
    static QCoro::Task<ExitCode> import(Application *application, Console *console, StandardInput *input,
                                        Command command);
    /// Asks which of the candidates are to be written, and writes those one after another.
    static QCoro::Task<ExitCode> pick(Application *application, Console *console, StandardInput *input,
                                      QList<MemoryCandidateDTO> candidates);
    /// A file's text, or standard input's for "-"; none, and why was said, when it cannot be read.
    static QCoro::Task<std::optional<QString>> text(Console *console, StandardInput *input, QString file);
};

} // namespace lmp
