#pragma once

#include "dev/DevChildEngine.h"
#include "dev/DevPermissionPolicy.h"
#include "dev/JsonRpcConnection.h"
#include "dev/codex/CodexItems.h"
#include "dev/codex/CodexQuestion.h"

namespace lmp {

/// The Codex command-line tool as an engine: its application server runs as a child, and we are its client.
///
/// As every engine it lives on its executor. The child outlives nothing here: it is asked to end with `stop`, when a
/// start fails and when it breaks the protocol beyond use. Lines that make no sense are passed over.
class CodexEngine final : public DevChildEngine {
public:
    /// How long an answer may take.
    struct Limits {
        std::chrono::milliseconds start{30'000};     ///< each step until the thread is there
        std::chrono::milliseconds turn{60'000};      ///< until a turn has begun
        std::chrono::milliseconds interrupt{15'000}; ///< until an interruption is heard
    };

    CodexEngine()
        : CodexEngine(QStringLiteral("codex"), Limits()) {}
    /// @param program a name to be looked for, or an absolute path
    CodexEngine(QString program, Limits limits);
    ~CodexEngine() override = default;

    DevEngineKind kind() const override { return DevEngineKind::codex; }

protected:
    QCoro::Task<Outcome<Session>> onStart(Start request) override;
    QCoro::Task<Outcome<Sent>> onSend(QString text) override;
    bool onRespond(const QString &requestId, const DevPermissionDecision &decision) override;
    void onSetMode(DevMode mode) override;
    void onInterrupt() override;
    void onLine(QByteArrayView line) override;
    void onEnd(End why, const QString &last) override;
    void onStop() override;

private:
    DevPermissionPolicy::Verdict verdict(const CodexQuestion &question) const;

    // The start, step by step.
    QCoro::Task<Outcome<Done>> open(Start request);
    QCoro::Task<Outcome<Done>> openThread(Start request);
    void noteThread(const JsonRpcConnection::Reply &reply);

    // Reading.
    void handle(codex_message::Other &) {}
    void handle(codex_message::Response &response);
    void handle(codex_message::Request &request);
    void handle(codex_message::ItemStarted &started);
    void handle(codex_message::ItemCompleted &completed);
    void handle(codex_message::MessageDelta &delta);
    void handle(codex_message::OutputDelta &delta);
    void handle(codex_message::UsageUpdated &usage);
    void handle(codex_message::Rerouted &rerouted);
    void handle(codex_message::Error &error);
    void handle(codex_message::TurnStarted &started);
    void handle(codex_message::TurnCompleted &completed);
    void handle(codex_message::RequestResolved &resolved);
    bool isForeign(const std::optional<QString> &threadId) const;

    void judge(CodexQuestion question);
    void noteTurn(const std::optional<QString> &turnId);
    QCoro::Task<> interruptTurn();
    DevTurnUsage usage() const;
    void yieldAll(CodexItems::Events events);
    void withdraw(QString id);
    void withdrawAll();

    const QString m_program;
    const Limits m_limits;
    std::optional<JsonRpcConnection> m_rpc;
    CodexItems m_items;
    DevPermissionPolicy m_policy;
    std::map<QString, CodexQuestion> m_pendingApprovals; ///< put to the user, by the request's id

    QString m_cwd;
    DevMode m_mode = DevMode::acceptEdits;
    std::optional<QString> m_model;
    std::optional<QString> m_threadId;
    std::optional<QString> m_turnId;     ///< of the turn that runs, once it is known
    std::optional<QString> m_lastTurnId; ///< of the turn that ended last
    std::optional<QString> m_sentTurnId; ///< of the turn that took the words that were sent last
    std::optional<QString> m_pendingDenyReason;
    std::optional<codex_message::TokenTotal> m_lastUsage;
    std::chrono::steady_clock::time_point m_turnStartedAt;
    bool m_running = false;         ///< a turn has been asked for and has not ended
    bool m_interruptWanted = false; ///< before the turn's id was known
    bool m_errorShown = false;      ///< of this turn
};

} // namespace lmp
