#include "dev/claude/ClaudeCodeEngine.h"

#include "dev/claude/ClaudeTransport.h"

namespace lmp {

using namespace Qt::StringLiterals;

ClaudeCodeEngine::ClaudeCodeEngine(QString program)
    : DevChildEngine(u"claude"_s)
    , m_program(std::move(program)) {}

QCoro::Task<DevEngine::Outcome<DevEngine::Session>> ClaudeCodeEngine::onStart(Start request) {
    const QString directory = request.cwd.toLocalFile();
    m_conversation = ClaudeConversation(directory, request.mode);
    const auto launched = co_await launch(ClaudeTransport::command(
        m_program, {.directory = directory, .resume = request.resume, .model = request.model}));
    if (!launched)
        co_return std::unexpected(launched.error());
    co_return m_events.session();
}

QCoro::Task<DevEngine::Outcome<DevEngine::Sent>> ClaudeCodeEngine::onSend(QString text) {
    if (!m_process || !m_process->isRunning())
        co_return std::unexpected(DevEngineError::server(u"Claude 进程没在跑"_s));
    m_conversation.send(text);
    if (!flush())
        co_return std::unexpected(DevEngineError::server(u"Claude 不再读输入了，没有发出"_s));
    co_return Sent();
}

bool ClaudeCodeEngine::onRespond(const QString &requestId, const DevPermissionDecision &decision) {
    const bool waited = m_conversation.respond(requestId, decision);
    flush();
    return waited;
}

void ClaudeCodeEngine::onSetMode(DevMode mode) {
    m_conversation.setMode(mode);
}

void ClaudeCodeEngine::onInterrupt() {
    if (!m_process)
        return;
    m_conversation.interrupt();
    flush();
}

void ClaudeCodeEngine::onLine(QByteArrayView line) {
    m_conversation.take(line);
    flush();
}

void ClaudeCodeEngine::onEnd(End why, const QString &last) {
    if (why == End::TooLong)
        m_conversation.end(u"Claude Code 发来的一行太长了，会话已经停下。"_s);
    else
        m_conversation.end(last.isEmpty() ? u"claude 进程退出了"_s : u"claude 进程退出了："_s + last);
    flush();
}

/// Writes what the conversation has to say to the tool, and tells what it has to tell.
///
/// @return false when the tool did not take all of it
bool ClaudeCodeEngine::flush() {
    bool taken = true;
    for (const auto &line : m_conversation.takeLines())
        taken = writeLine(line) && taken;
    for (QString &id : m_conversation.takeWithdrawn())
        m_events.withdraw(std::move(id));
    for (auto &event : m_conversation.takeEvents())
        m_events.tell(std::move(event));
    return taken;
}

} // namespace lmp
