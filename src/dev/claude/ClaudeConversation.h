#pragma once

#include "dev/DevEvent.h"
#include "dev/DevMode.h"
#include "dev/DevPermissionDecision.h"
#include "dev/claude/ClaudeMessage.h"

#include <QElapsedTimer>

#include <utility>

namespace lmp {

/// What is said between Claude Code and us: its lines go in, events for the user and lines for it come out. Knows no
/// process and no thread.
///
/// A value of its engine, on the engine's executor. Nothing fails: a line that makes no sense changes nothing.
class ClaudeConversation {
public:
    /// @param directory where the tool works, an absolute path
    explicit ClaudeConversation(QString directory = {}, DevMode mode = DevMode::acceptEdits)
        : m_directory(std::move(directory))
        , m_mode(mode) {}

    /// One line of the tool's standard output.
    void take(QByteArrayView line);
    /// The tool has ended. @param why for the user
    void end(const QString &why);

    void send(const QString &text);
    /// @return false for a question that does not wait any more: nothing is done then
    bool respond(const QString &requestId, const DevPermissionDecision &decision);
    void setMode(DevMode mode) { m_mode = mode; }
    void interrupt();

    /// A turn was sent and has not ended.
    bool isRunning() const { return m_running; }

    /// What there is to tell since the last time.
    std::vector<DevEvent> takeEvents() { return std::exchange(m_events, {}); }
    /// What is to be written since the last time.
    std::vector<QByteArray> takeLines() { return std::exchange(m_lines, {}); }
    /// The ids of questions that have been taken away since the last time.
    QStringList takeWithdrawn() { return std::exchange(m_withdrawn, {}); }

private:
    /// A call whose result has not come.
    struct OpenCall {
        QString id = {};
        QString path = {};
        std::optional<DevFileChangeKind> change = {}; ///< what becomes of the file when it goes well
    };

    void handle(const claude_message::Other &) {}
    void handle(const claude_message::Init &init);
    void handle(const claude_message::Said &said);
    void handle(const claude_message::ToolResults &results);
    void handle(const claude_message::TurnEnd &end);
    void handle(const claude_message::Question &question);
    void handle(const claude_message::Withdrawal &withdrawal);
    void handle(const claude_message::OtherRequest &request);

    void say(const claude_message::Text &text, bool byTool);
    void open(const claude_message::ToolUse &use);
    void close(const claude_message::ToolResult &result);
    void closeAll();
    void allow(const claude_message::Question &question);
    void tellHeld();
    void withdrawAll();
    void beginTurn();
    bool needsInput() const;

    QString m_directory;
    DevMode m_mode;
    DevPermissionPolicy m_policy;
    std::vector<DevEvent> m_events;
    std::vector<QByteArray> m_lines;
    std::optional<claude_message::Init> m_init;
    std::vector<OpenCall> m_calls;
    std::vector<claude_message::Question> m_questions; ///< that wait for the user, in the order of their coming
    QStringList m_withdrawn;
    /// Words of the tool itself, kept back until it is known that they are not also the reason of a failed turn.
    std::optional<QString> m_held;
    bool m_running = false;
    bool m_interrupted = false; ///< the running turn is being ended because the user wished it
    QElapsedTimer m_sinceStart; ///< of the turn
    int m_requests = 0;
};

} // namespace lmp
