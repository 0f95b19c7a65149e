#include "terminal/DevCommand.h"

#include "core/Detach.h"
#include "dev/DevEngineRegistry.h"
#include "dev/DevProcessRegistry.h"
#include "dev/LoginShell.h"
#include "dev/claude/ClaudeCodeEngine.h"
#include "dev/codex/CodexEngine.h"

#include <QFileInfo>
#include <QPointer>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

DevEngine::Handle makeEngine(DevEngineKind kind) {
    if (kind == DevEngineKind::claude)
        return DevEngine::make<ClaudeCodeEngine>();
    return DevEngine::make<CodexEngine>();
}

} // namespace

DevCommand::DevCommand(Console &console, StandardInput &input, CommandLine::Dev line)
    : m_console(console)
    , m_input(input)
    , m_line(std::move(line))
    , m_output(console, m_line.engine, m_line.jsonl) {
    // A reader who takes nothing must not keep signals from being seen.
    m_console.queueOutput();
}

DevCommand::~DevCommand() = default;

QCoro::Task<> DevCommand::dropped(QCoro::Task<DevEngine::Done> task) {
    co_await task;
}

QCoro::Task<ExitCode> DevCommand::run() {
    m_once = !m_line.text.isEmpty() || (!m_line.jsonl && !m_console.inputIsTerminal());
    if (!QFileInfo(m_line.repo).isDir()) {
        m_output.error(u"没有这个文件夹："_s + m_line.repo);
        co_return ExitCode::Usage;
    }
    // It is needed next, and the user may take a moment to say what they want.
    LoginShell::prepare();
    QString text;
    if (m_once) {
        const auto asked = co_await question();
        if (!asked)
            co_return m_leaving ? ExitCode::Stopped : ExitCode::Usage;
        text = *asked;
    }
    if (const auto refused = co_await refusal())
        co_return *refused;
    m_engine = makeEngine(m_line.engine);
    auto failed = co_await start();
    if (!failed)
        failed = co_await talk(text);
    co_await leave();
    co_return *failed;
}

QCoro::Task<std::optional<QString>> DevCommand::question() {
    std::optional<QString> text = m_line.text.join(u' ');
    if (m_line.text.isEmpty())
        text = co_await m_input.everything();
    while (text && (text->endsWith(u'\n') || text->endsWith(u'\r')))
        text->chop(1);
    if (text && !text->trimmed().isEmpty())
        co_return text;
    if (!m_leaving)
        m_output.error(text ? u"没有要说的话。"_s : u"输入太长了，没有发出。"_s);
    co_return std::nullopt;
}

QCoro::Task<std::optional<ExitCode>> DevCommand::start() {
    auto started = co_await m_engine->start({.cwd = QUrl::fromLocalFile(QFileInfo(m_line.repo).absoluteFilePath()),
                                             .resume = m_line.resume,
                                             .mode = m_line.mode,
                                             .model = m_line.model});
    if (m_leaving)
        co_return ExitCode::Stopped;
    if (!started) {
        using Kind = DevEngineError::Kind;
        m_output.error(started.error().message);
        const auto &error = started.error().error;
        const bool unready = error && (error->kind == Kind::notInstalled || error->kind == Kind::notLoggedIn);
        co_return unready ? ExitCode::NotSignedIn : ExitCode::Failed;
    }
    m_following = true;
    detach(follow(std::move(started->events)), "DevCommand::follow");
    detach(followWithdrawn(std::move(started->withdrawn)), "DevCommand::followWithdrawn");
    co_return std::nullopt;
}

QCoro::Task<std::optional<ExitCode>> DevCommand::refusal() {
    using State = DevReadiness::State;
    const auto probe = DevEngineRegistry::localProbes().at(m_line.engine);
    const auto readiness = co_await probe();
    if (m_leaving)
        co_return ExitCode::Stopped;
    // What could not be found out is tried: the start says it better.
    if (readiness.state != State::missing && readiness.state != State::loggedOut)
        co_return std::nullopt;
    const QString name = DevOutput::name(m_line.engine);
    m_output.error((readiness.state == State::missing ? u"没找到 %1。"_s : u"%1 还没登录。"_s).arg(name) +
                   readiness.detail.value_or(QString()));
    co_return ExitCode::NotSignedIn;
}

QCoro::Task<ExitCode> DevCommand::talk(QString text) {
    if (m_line.jsonl) {
        m_listening = true;
        detach(listen(), "DevCommand::listen");
    }
    if (m_once) {
        submit(text);
        co_await until([this] { return m_turns == 0 || isOver(); });
    } else if (m_line.jsonl) {
        co_await until([this] { return (m_inputEnded && m_turns == 0) || isOver(); });
    } else {
        co_await converse();
    }
    if (m_leaving || (m_stopped && m_turns > 0))
        co_return ExitCode::Stopped;
    co_return m_ended && !m_once ? ExitCode::Failed : m_outcome;
}

QCoro::Task<> DevCommand::converse() {
    m_output.note(u"%1 · %2 · %3\n回车发送 · Ctrl-C 停下这一回合 · Ctrl-D 离开"_s.arg(
        DevOutput::name(m_line.engine), devModeName(m_line.mode), QFileInfo(m_line.repo).absoluteFilePath()));
    while (!isOver()) {
        // A question may come between turns, too, and there is one line to be typed at a time.
        co_await until([this] { return !m_asking || isOver(); });
        if (isOver())
            co_return;
        const auto text = co_await m_input.line(u"你："_s, std::exchange(m_typed, {}));
        if (isOver())
            co_return;
        // The prompt was taken away; the end of input is another matter, whatever came before it.
        if (!text && std::exchange(m_promptCancelled, false))
            continue;
        if (!text)
            break;
        m_interrupted = false;
        if (text->trimmed().isEmpty())
            continue;
        submit(*text);
        co_await until([this] { return m_turns == 0 || isOver(); });
    }
    // Whoever leaves has seen how the last turn went.
    if (!isOver())
        m_outcome = ExitCode::Submitted;
}

void DevCommand::submit(const QString &text) {
    // What happened between turns is not this one's.
    if (m_turns == 0) {
        m_failed = m_turnInterrupted = false;
        m_withdrawn.clear();
    }
    ++m_turns;
    detach(send(text), "DevCommand::send");
}

QCoro::Task<> DevCommand::send(QString text) {
    const QPointer<QObject> self(this);
    const auto sent = co_await m_engine->send(std::move(text));
    if (!self || (sent && !sent->joined) || isOver())
        co_return;
    if (!sent)
        m_output.error(sent.error().message);
    // There is no turn of its own to wait for: another one runs, or has taken it and may be over by now.
    if (m_turns > 1 || sent) {
        m_turns = std::max(m_turns - 1, 0);
        changed();
    } else {
        endTurn(ExitCode::Failed);
    }
}

QCoro::Task<> DevCommand::until(std::function<bool()> isSo) {
    while (!isSo()) {
        const Later<bool> change;
        m_change = change;
        co_await change;
    }
    m_change.reset();
}

void DevCommand::changed() {
    if (m_change)
        m_change->resolve(true);
}

QCoro::Task<> DevCommand::leave() {
    m_finishing = true;
    dropQuestions();
    m_input.cancel();
    const bool stopping = !m_leaving;
    co_await m_engine->stop();
    co_await until([this] { return !m_asking; });
    if (m_following)
        co_await m_followed;
    if (m_listening)
        co_await m_listened;
    // A tool that is asked to end may still write down what it has to.
    auto &children = DevProcessRegistry::shared();
    for (int step = 0; stopping && !m_leaving && step < 165 && children.liveCount() > 0; ++step)
        co_await m_clock.sleep(20ms, {});
    co_await children.quit();
}

void DevCommand::cancelPrompt() {
    m_promptCancelled = m_input.isWaiting();
    m_input.cancel();
}

void DevCommand::interrupt(bool leave) {
    const bool again = std::exchange(m_interrupted, true);
    // While nothing is asked for, a terminal shows that Ctrl-C was typed.
    if (!m_input.isWaiting())
        m_console.noteEcho();
    m_leaving = m_leaving || leave || again || !m_following || m_stopped;
    if (m_leaving) {
        m_input.cancel();
        m_console.hurry();
    }
    if (!m_engine) {
        // What looks for the agent ends with its children.
        detach(DevProcessRegistry::shared().quit(), "DevCommand::interrupt");
    } else if (!m_following) {
        m_engine->shutdown();
    } else if (m_leaving) {
        changed();
    } else if (m_turns > 0) {
        dropQuestions();
        detach(dropped(m_engine->interrupt()), "DevCommand::interrupt");
    } else if (m_asking) {
        denyQuestions(u"用户中断"_s);
    } else if (m_line.jsonl || m_once) {
        m_leaving = true;
    } else {
        cancelPrompt();
        m_output.note(u"再按一次 Ctrl-C 离开。"_s);
    }
    changed();
}

} // namespace lmp
