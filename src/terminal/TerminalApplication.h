#pragma once

#include "app/Application.h"
#include "platform/SignalWatcher.h"
#include "terminal/ChatCommand.h"
#include "terminal/CommandLine.h"
#include "terminal/Console.h"
#include "terminal/SignInCommand.h"
#include "terminal/StandardInput.h"

#include <memory>

namespace lmp {

class DevCommand;

/// One run of the program from a terminal: a command line in, an exit code out.
///
/// Owned by main, UI thread.
class TerminalApplication : public QObject {
    Q_OBJECT
public:
    TerminalApplication(CommandLine line, std::chrono::nanoseconds processStartAt);
    ~TerminalApplication() override;

    /// Runs the event loop until the command is done.
    int run();

private:
    QCoro::Task<> main();
    QCoro::Task<ExitCode> command();
    /// A command that is about this machine only: the service is not looked for.
    QCoro::Task<ExitCode> localCommand();
    void followNotices();
    void onSignal(int signal);
    void onLocalSignal(int signal);
    static Application::Options options(const CommandLine &line, std::chrono::nanoseconds processStartAt);

    CommandLine m_line;
    Console m_console;
    StandardInput m_input;
    SignalWatcher m_signals;
    Application m_application;
    std::unique_ptr<ChatCommand> m_chat;     ///< while it runs
    std::unique_ptr<SignInCommand> m_signIn; ///< while it runs
    std::unique_ptr<DevCommand> m_dev;       ///< while it runs
    bool m_localEnded = false;               ///< only what it said is still being written
    bool m_localStopped = false;             ///< by a signal
};

} // namespace lmp
