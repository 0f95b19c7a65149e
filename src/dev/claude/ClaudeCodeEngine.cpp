#include "dev/claude/ClaudeCodeEngine.h"

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// Lines that are read before their events are handed over: one waking of the consumer for many.
constexpr std::size_t burst = 256;

} // namespace

ClaudeCodeEngine::ClaudeCodeEngine(QString program)
    : DevEngine(u"claude"_s)
    , m_program(std::move(program)) {}

QCoro::Task<DevEngine::Outcome<DevEngine::Session>> ClaudeCodeEngine::onStart(Start request) {
    const QString directory = request.cwd.toLocalFile();
    m_conversation = ClaudeConversation(directory, request.mode);
    if (m_stopped)
        co_return std::unexpected(DevEngineError::server(u"会话已经停下了"_s));
    // Looking for the program may take seconds, the first time in the life of the application.
    auto launched =
        ClaudeTransport::launch(m_program, {.directory = directory, .resume = request.resume, .model = request.model});
    if (!launched)
        co_return std::unexpected(launched.error());
    m_process = *launched;
    m_executor.spawn(read(m_process), "ClaudeCodeEngine::read");
    co_return Session{m_events, m_withdrawn};
}

QCoro::Task<DevEngine::Outcome<DevEngine::Done>> ClaudeCodeEngine::onSend(QString text) {
    if (!m_process || !m_process->isRunning())
        co_return std::unexpected(DevEngineError::server(u"Claude 进程没在跑"_s));
    m_conversation.send(text);
    flush(0);
    co_return Done();
}

bool ClaudeCodeEngine::onRespond(const QString &requestId, const DevPermissionDecision &decision) {
    const bool waited = m_conversation.respond(requestId, decision);
    flush(0);
    return waited;
}

void ClaudeCodeEngine::onSetMode(DevMode mode) {
    m_conversation.setMode(mode);
}

void ClaudeCodeEngine::onInterrupt() {
    if (!m_process)
        return;
    m_conversation.interrupt();
    flush(0);
}

void ClaudeCodeEngine::onStop() {
    m_stopped = true;
    m_reading.request_stop();
    if (m_process)
        m_process->terminate(stopGrace);
    m_process.reset();
    m_events.close();
    m_withdrawn.close();
}

QCoro::Task<> ClaudeCodeEngine::read(std::shared_ptr<DevProcess> process) {
    auto lines = process->lines();
    const auto stop = m_reading.get_token();
    for (auto line = co_await lines.next(stop); line; line = co_await lines.next(stop)) {
        m_handingOn = true;
        std::size_t taken = 0;
        do {
            m_conversation.take(*line);
            flush(std::size_t(line->size()));
        } while (++taken < burst && m_backlog.size() < burst && (line = lines.tryNext()));
        co_await deliver();
        if (m_stopped)
            break;
    }
    if (m_stopped)
        co_return;
    m_handingOn = true;
    ended(*process, lines.isTooLong());
    co_await deliver();
    m_events.close();
    m_withdrawn.close();
}

/// Hands on what the reader has gathered; a full channel makes it wait, and with it the tool.
QCoro::Task<> ClaudeCodeEngine::deliver() {
    while (!m_backlog.empty()) {
        Weighed next = std::move(m_backlog.front());
        m_backlog.pop_front();
        co_await m_events.push(std::move(next.event), next.weight);
    }
    m_handingOn = false;
}

void ClaudeCodeEngine::ended(const DevProcess &process, bool tooLong) {
    if (tooLong) {
        m_process->terminate(stopGrace);
        m_conversation.end(u"Claude Code 发来的一行太长了，会话已经停下。"_s);
    } else {
        const QString said = process.stderrTail().trimmed();
        m_conversation.end(said.isEmpty() ? u"claude 进程退出了"_s : u"claude 进程退出了："_s + said);
    }
    flush(0);
    m_process.reset();
}

/// Writes what the conversation has to say to the tool, and tells what it has to tell.
///
/// @param weight of the events, in bytes
void ClaudeCodeEngine::flush(std::size_t weight) {
    for (const auto &line : m_conversation.takeLines()) {
        if (m_process)
            m_process->writeLine(line);
    }
    for (QString &id : m_conversation.takeWithdrawn())
        m_withdrawn.tryPush(id);
    for (auto &event : m_conversation.takeEvents()) {
        if (m_handingOn)
            m_backlog.push_back({std::move(event), std::min(std::exchange(weight, 0) + eventCost, eventRoom)});
        else
            m_events.tryPush(event, 0); // there is always room for what has no weight
    }
}

} // namespace lmp
