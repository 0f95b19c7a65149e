#include "terminal/TerminalApplication.h"

#include "core/Detach.h"
#include "dev/DevProcessRegistry.h"
#include "platform/ProcessPrivacy.h"
#include "terminal/AccountCommands.h"
#include "terminal/ConversationCommands.h"
#include "terminal/CrisisCommand.h"
#include "terminal/DevCommand.h"
#include "terminal/DevGitCommand.h"
#include "terminal/DoctorCommand.h"
#include "terminal/DraftCommands.h"
#include "terminal/GuestCommand.h"
#include "terminal/MemoryCommands.h"
#include "terminal/SearchCommand.h"

#include <csignal>

namespace lmp {

using namespace Qt::StringLiterals;

TerminalApplication::TerminalApplication(CommandLine line, std::chrono::nanoseconds processStartAt)
    : m_line(std::move(line))
    , m_input(m_console)
    , m_application(options(m_line, processStartAt)) {
    connect(&m_signals, &SignalWatcher::caught, this, &TerminalApplication::onSignal);
}

TerminalApplication::~TerminalApplication() = default;

Application::Options TerminalApplication::options(const CommandLine &line, std::chrono::nanoseconds processStartAt) {
    const QString site = line.site.isEmpty() && !line.sandbox ? qEnvironmentVariable("LMP_SITE") : line.site;
    const QString token = ProcessPrivacy::take("LMP_TOKEN");
    const bool crisis = line.command == CommandLine::Command::Crisis;
    return {.site = site,
            .profile = line.profile,
            .token = token.isEmpty() || crisis ? std::nullopt : std::optional(token),
            .viewport = u"terminal"_s,
            .withoutTrace = crisis,
            .processStartAt = processStartAt};
}

int TerminalApplication::run() {
    // Queued, so that an exit before the loop runs is not lost.
    QMetaObject::invokeMethod(this, [this] { detach(main(), "the terminal's command"); }, Qt::QueuedConnection);
    return QCoreApplication::exec();
}

QCoro::Task<> TerminalApplication::main() {
    if (m_line.isLocal()) {
        const ExitCode code = co_await localCommand();
        m_localEnded = true;
        co_await m_console.drained();
        // However it ended, nothing that it started outlives it.
        co_await DevProcessRegistry::shared().quit();
        m_dev.reset();
        QCoreApplication::exit(int(m_localStopped ? ExitCode::Stopped : code));
        co_return;
    }
    const auto opened = co_await m_application.open();
    ExitCode code = ExitCode::Failed;
    if (opened) {
        followNotices();
        code = co_await command();
    } else if (m_line.command == CommandLine::Command::Crisis)
        CrisisCommand::withoutService(m_console, opened.error());
    else
        m_console.error(opened.error());
    m_chat.reset();
    m_signIn.reset();
    co_await m_application.close();
    QCoreApplication::exit(int(code));
}

void TerminalApplication::followNotices() {
    auto &auth = m_application.auth();
    connect(&auth, &AuthStore::noticeChanged, this, [this, &auth] {
        // The sandbox's own account is none the worse for not being kept: it signs in again by itself.
        const bool automatic = m_application.usesOwnSandbox() && m_line.command != CommandLine::Command::SignIn;
        if (!automatic && !auth.notice().isEmpty())
            m_console.note(auth.notice());
    });
}

QCoro::Task<ExitCode> TerminalApplication::command() {
    switch (m_line.command) {
    case CommandLine::Command::Chat:
        m_chat = std::make_unique<ChatCommand>(m_application, m_console, m_input, m_line);
        return m_chat->run();
    case CommandLine::Command::SignIn:
        if (m_line.guest)
            return GuestCommand::run(&m_application, &m_console, &m_input);
        m_signIn = std::make_unique<SignInCommand>(m_application, m_console, m_input, m_line);
        return m_signIn->run();
    case CommandLine::Command::SignOut:
        return AccountCommands::signOut(&m_application, &m_console);
    case CommandLine::Command::WhoAmI:
        return AccountCommands::whoAmI(&m_application, &m_console);
    case CommandLine::Command::ConversationList:
        return ConversationCommands::list(&m_application, &m_console);
    case CommandLine::Command::ConversationShow:
        return ConversationCommands::show(&m_application, &m_console, m_line.conversationId);
    case CommandLine::Command::Search:
        return SearchCommand::run(&m_application, &m_console, m_line);
    case CommandLine::Command::DraftList:
        return DraftCommands::list(&m_application, &m_console, m_line.draftJson);
    case CommandLine::Command::DraftShow:
        return DraftCommands::show(&m_application, &m_console, m_line.draftId, m_line.draftJson);
    case CommandLine::Command::DraftDiscard:
        return m_line.discardUnreadable
                   ? DraftCommands::discardUnreadable(&m_application, &m_console, &m_input, m_line.discardSurely)
                   : DraftCommands::discard(&m_application, &m_console, &m_input, m_line.draftId, m_line.discardSurely);
    case CommandLine::Command::Memory:
        return MemoryCommands::run(&m_application, &m_console, &m_input, m_line.memory);
    case CommandLine::Command::Crisis:
        return CrisisCommand::run(&m_application, &m_console, m_line.region);
    default:
        Q_UNREACHABLE();
    }
}

QCoro::Task<ExitCode> TerminalApplication::localCommand() {
    if (m_line.command == CommandLine::Command::Doctor)
        return DoctorCommand::run(&m_console, m_line.json);
    if (m_line.command == CommandLine::Command::DevGit)
        return DevGitCommand::show(&m_console, m_line);
    if (m_line.command == CommandLine::Command::DevWorktree)
        return DevGitCommand::newWorktree(&m_console, m_line);
    m_dev = std::make_unique<DevCommand>(m_console, m_input, m_line.dev);
    return m_dev->run();
}

void TerminalApplication::onSignal(int signal) {
    if (m_chat && m_chat->interrupt(signal != SIGINT))
        return;
    if (m_line.isLocal())
        return onLocalSignal(signal);
    // Nothing is under way that could be lost, so nobody needs to wait for it.
    m_input.cancel();
    QCoreApplication::exit(int(ExitCode::Stopped));
}

void TerminalApplication::onLocalSignal(int signal) {
    if (m_localEnded)
        return m_console.silence();
    if (m_dev)
        return m_dev->interrupt(signal != SIGINT);
    // The command ends with what it runs.
    m_localStopped = true;
    m_console.silence();
    detach(DevProcessRegistry::shared().quit(), "the end of a local command");
}

} // namespace lmp
