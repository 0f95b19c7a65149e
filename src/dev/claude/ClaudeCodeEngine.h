#pragma once

#include "dev/DevChildEngine.h"
#include "dev/claude/ClaudeConversation.h"

namespace lmp {

/// The Claude Code command-line tool as an engine: a child that reads turns and writes what happens, line by line.
///
/// As every engine it lives on its executor. The tool asks about every use of a tool, and the policy here or the user
/// answers. A turn may be sent while another runs; the tool takes it up afterwards. Its child ending is the end of the
/// stream, with the reason before it.
class ClaudeCodeEngine final : public DevChildEngine {
public:
    /// @param program a name to be looked for, or an absolute path
    explicit ClaudeCodeEngine(QString program = QStringLiteral("claude"));
    ~ClaudeCodeEngine() override = default;

    DevEngineKind kind() const override { return DevEngineKind::claude; }

protected:
    QCoro::Task<Outcome<Session>> onStart(Start request) override;
    QCoro::Task<Outcome<Sent>> onSend(QString text) override;
    bool onRespond(const QString &requestId, const DevPermissionDecision &decision) override;
    void onSetMode(DevMode mode) override;
    void onInterrupt() override;
    void onLine(QByteArrayView line) override;
    void onEnd(End why, const QString &last) override;

private:
    bool flush();

    const QString m_program;
    ClaudeConversation m_conversation;
};

} // namespace lmp
