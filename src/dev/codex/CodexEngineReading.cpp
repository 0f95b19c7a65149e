#include "dev/codex/CodexEngine.h"

#include <algorithm>

// What Codex says, message by message.

namespace lmp {

using namespace Qt::StringLiterals;
using namespace dev_event;

void CodexEngine::onLine(QByteArrayView line) {
    // A line that is no message is passed over: what else it may be, the session goes on.
    if (auto message = Json::decode<CodexMessage>(line))
        std::visit([this](auto &what) { handle(what); }, message->what);
}

void CodexEngine::onEnd(End why, const QString &last) {
    const QString text = why == End::TooLong ? u"Codex 发来的一行太长了，会话已经停下。"_s
                         : m_running         ? u"codex app-server 中途退出："_s + last
                                             : u"codex app-server 退出了："_s + last;
    CodexItems::Events events;
    m_items.closeAll(events);
    yieldAll(std::move(events));
    m_events.tell(Failed{text});
    m_rpc->close(text);
    m_running = false;
    m_turnId.reset();
    withdrawAll();
}

bool CodexEngine::isForeign(const std::optional<QString> &threadId) const {
    return threadId && m_threadId && threadId != m_threadId;
}

void CodexEngine::handle(codex_message::Response &response) {
    if (!response.result && response.error.isEmpty())
        response.error = u"Codex 拒绝了，没说原因"_s;
    m_rpc->settle(response.id, {.result = std::move(response.result), .error = response.error});
}

void CodexEngine::handle(codex_message::Request &request) {
    if (auto question = CodexQuestion::of(request, m_items, m_cwd))
        return judge(*std::move(question));
    m_rpc->refuse(request.id, {json_rpc::methodNotFound, u"unsupported by Lumenpair workbench"_s});
    m_events.tell(Notice{u"Codex 发来了工作台还不支持的请求："_s + request.method});
}

DevPermissionPolicy::Verdict CodexEngine::verdict(const CodexQuestion &question) const {
    using Outcome = DevPermissionPolicy::Verdict::Outcome;
    if (!question.mustAsk)
        return m_policy.evaluate(question.call, m_mode, m_cwd);
    // Where nothing may be done, nobody is asked for more.
    auto plain = m_policy.evaluate({.tool = question.tool}, m_mode, m_cwd);
    return plain.outcome == Outcome::deny ? plain : DevPermissionPolicy::Verdict{.outcome = Outcome::ask};
}

void CodexEngine::judge(CodexQuestion question) {
    using Outcome = DevPermissionPolicy::Verdict::Outcome;
    const auto found = verdict(question);
    if (found.outcome == Outcome::ask) {
        const DevPermissionRequest request = question.request();
        m_pendingApprovals.insert_or_assign(request.id, std::move(question));
        return m_events.tell(request);
    }
    const bool allowed = found.outcome == Outcome::allow;
    m_rpc->answer(question.rpcId, question.answer(allowed ? DevPermissionDecision::Kind::allowOnce
                                                          : DevPermissionDecision::Kind::deny));
    if (!allowed)
        m_events.tell(Notice{found.reason});
}

void CodexEngine::handle(codex_message::ItemStarted &started) {
    if (started.item.type == "agentMessage"_L1 && isForeign(started.threadId))
        return;
    CodexItems::Events events;
    m_items.started(started.item, events);
    yieldAll(std::move(events));
}

void CodexEngine::handle(codex_message::ItemCompleted &completed) {
    if (completed.item.type == "agentMessage"_L1 && isForeign(completed.threadId))
        return;
    CodexItems::Events events;
    m_items.completed(completed.item, events);
    yieldAll(std::move(events));
}

void CodexEngine::handle(codex_message::MessageDelta &delta) {
    if (isForeign(delta.threadId))
        return;
    CodexItems::Events events;
    m_items.messageDelta(delta, events);
    yieldAll(std::move(events));
}

void CodexEngine::handle(codex_message::OutputDelta &delta) {
    CodexItems::Events events;
    m_items.outputDelta(delta, events);
    yieldAll(std::move(events));
}

void CodexEngine::handle(codex_message::UsageUpdated &usage) {
    if (!isForeign(usage.threadId))
        m_lastUsage = usage.tokenUsage.total;
}

void CodexEngine::handle(codex_message::Rerouted &rerouted) {
    QString said = u"Codex 把模型从 %1 → %2"_s.arg(rerouted.fromModel, rerouted.toModel);
    if (rerouted.reason && !rerouted.reason->isEmpty())
        said += u"（%1）"_s.arg(*rerouted.reason);
    m_model = rerouted.toModel;
    m_events.tell(Notice{said});
}

void CodexEngine::handle(codex_message::Error &error) {
    if (isForeign(error.threadId))
        return;
    const QString message = error.error.message.value_or(u"出错了，Codex 没说原因"_s);
    if (error.willRetry.value_or(false))
        return m_events.tell(Notice{message});
    // The end of the turn says it again.
    if (!m_running || !std::exchange(m_errorShown, true))
        m_events.tell(Failed{message});
}

void CodexEngine::handle(codex_message::TurnStarted &started) {
    if (!isForeign(started.threadId))
        noteTurn(started.turn.id);
}

void CodexEngine::handle(codex_message::TurnCompleted &completed) {
    const auto &turn = completed.turn;
    if (isForeign(completed.threadId) || (turn.id && (turn.id == m_lastTurnId || (m_turnId && turn.id != m_turnId))))
        return;
    m_lastTurnId = turn.id;
    m_turnId.reset();
    m_running = m_interruptWanted = false;
    CodexItems::Events events;
    if (turn.status == "completed"_L1) {
        m_items.closeMessages(events);
        events.emplace_back(TurnCompleted{usage()});
    } else if (turn.status == "interrupted"_L1) {
        m_items.closeAll(events);
        withdrawAll();
        events.emplace_back(Interrupted());
    } else {
        m_items.closeMessages(events);
        const auto message = turn.error ? turn.error->message : std::nullopt;
        if (!std::exchange(m_errorShown, true))
            events.emplace_back(Failed{message.value_or(u"这一回合失败了（Codex 没说原因）"_s)});
    }
    yieldAll(std::move(events));
}

DevTurnUsage CodexEngine::usage() const {
    const auto passed = std::chrono::steady_clock::now() - m_turnStartedAt;
    DevTurnUsage usage{.durationMs = std::chrono::duration_cast<std::chrono::milliseconds>(passed).count(),
                       .model = m_model};
    if (m_lastUsage) {
        usage.inputTokens = m_lastUsage->inputTokens;
        usage.outputTokens = m_lastUsage->outputTokens;
    }
    return usage;
}

void CodexEngine::handle(codex_message::RequestResolved &resolved) {
    const QString id = resolved.requestId.text();
    // It follows every answer of ours as well.
    if (m_pendingApprovals.contains(id))
        withdraw(id);
}

} // namespace lmp
