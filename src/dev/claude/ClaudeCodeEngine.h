#pragma once

#include "dev/DevEngine.h"
#include "dev/claude/ClaudeConversation.h"
#include "dev/claude/ClaudeTransport.h"

#include <deque>
#include <stop_token>

namespace lmp {

/// The Claude Code command-line tool as an engine: a child that reads turns and writes what happens, line by line.
///
/// As every engine it lives on its executor. The tool asks about every use of a tool, and the policy here or the user
/// answers. A turn may be sent while another runs; the tool takes it up afterwards. Its child ending is the end of the
/// stream, with the reason before it.
class ClaudeCodeEngine final : public DevEngine {
public:
    static constexpr std::chrono::milliseconds stopGrace{3000};

    /// @param program a name to be looked for, or an absolute path
    explicit ClaudeCodeEngine(QString program = QStringLiteral("claude"));
    ~ClaudeCodeEngine() override = default;

    DevEngineKind kind() const override { return DevEngineKind::claude; }

protected:
    QCoro::Task<Outcome<Session>> onStart(Start request) override;
    QCoro::Task<Outcome<Done>> onSend(QString text) override;
    bool onRespond(const QString &requestId, const DevPermissionDecision &decision) override;
    void onSetMode(DevMode mode) override;
    void onInterrupt() override;
    void onStop() override;

private:
    /// What may wait for a slow consumer before the tool is held back: bytes of lines, and something for each event.
    static constexpr std::size_t eventRoom = 2 * 1024 * 1024;
    static constexpr std::size_t eventCost = 256;
    struct Weighed {
        DevEvent event;
        std::size_t weight;
    };

    QCoro::Task<> read(std::shared_ptr<DevProcess> process);
    QCoro::Task<> deliver();
    void ended(const DevProcess &process, bool tooLong);
    void flush(std::size_t weight);

    const QString m_program;
    std::shared_ptr<DevProcess> m_process;
    Channel<DevEvent> m_events{eventRoom};
    Channel<QString> m_withdrawn{maxWithdrawn};
    std::deque<Weighed> m_backlog; ///< what the reader has to hand on
    bool m_handingOn = false;      ///< the reader is at it; what others have to tell waits behind its events
    ClaudeConversation m_conversation;
    std::stop_source m_reading;
    bool m_stopped = false;
};

} // namespace lmp
