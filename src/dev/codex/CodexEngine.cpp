#include "dev/codex/CodexEngine.h"

#include "dev/codex/CodexCalls.h"

#include <QCoreApplication>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace dev_event;
using namespace codex_call;

namespace {

/// What nobody here looks at, some of it very often.
QList<QString> unwanted() {
    return {u"item/reasoning/summaryPartAdded"_s,
            u"item/reasoning/summaryTextDelta"_s,
            u"item/reasoning/textDelta"_s,
            u"item/plan/delta"_s,
            u"turn/diff/updated"_s,
            u"turn/plan/updated"_s,
            u"thread/readState/changed"_s,
            u"account/rateLimits/updated"_s};
}

template <class Answer>
std::optional<Answer> answerOf(const JsonRpcConnection::Reply &reply) {
    auto found = reply.result ? Json::fromValue<Answer>(*reply.result) : std::unexpected(JsonFailure());
    return found ? std::optional(*std::move(found)) : std::nullopt;
}

std::optional<QString> unlessEmpty(const std::optional<QString> &text) {
    return text && !text->isEmpty() ? text : std::nullopt;
}

} // namespace

CodexEngine::CodexEngine(QString program, Limits limits)
    : DevChildEngine(u"codex"_s)
    , m_program(std::move(program))
    , m_limits(limits) {}

QCoro::Task<DevEngine::Outcome<DevEngine::Session>> CodexEngine::onStart(Start request) {
    m_cwd = request.cwd.toLocalFile();
    m_mode = request.mode;
    // Before anything can be read.
    m_rpc.emplace([this](QByteArrayView line) { return writeLine(line); });
    const auto launched = co_await launch({.program = m_program, .arguments = {u"app-server"_s}, .directory = m_cwd});
    if (!launched)
        co_return std::unexpected(launched.error());
    const auto opened = co_await open(std::move(request));
    if (!opened) {
        onStop();
        co_return std::unexpected(opened.error());
    }
    co_return m_events.session();
}

QCoro::Task<DevEngine::Outcome<DevEngine::Done>> CodexEngine::open(Start request) {
    const Initialize client{.clientInfo = {.version = QCoreApplication::applicationVersion()},
                            .capabilities = {.optOutNotificationMethods = unwanted()}};
    const auto greeted = co_await m_rpc->request(u"initialize"_s, client, m_limits.start);
    if (!greeted.result)
        co_return std::unexpected(DevEngineError::server(greeted.error));
    m_rpc->notify(u"initialized"_s, json_rpc::Nothing());
    const auto account = co_await m_rpc->request(u"account/read"_s, json_rpc::Nothing(), m_limits.start);
    if (!account.result)
        co_return std::unexpected(DevEngineError::server(account.error));
    if (!answerOf<AccountAnswer>(account).value_or(AccountAnswer()).isUsable()) {
        DevEngineError refused = DevEngineError::notLoggedIn();
        refused.message = u"Codex 还没登录：在终端里运行 codex login，用你的 ChatGPT 账号登录后再试。"
                          u"Lumenpair 不会读你的凭据。"_s;
        co_return std::unexpected(refused);
    }
    co_return co_await openThread(std::move(request));
}

QCoro::Task<DevEngine::Outcome<DevEngine::Done>> CodexEngine::openThread(Start request) {
    OpenThread wanted{.threadId = unlessEmpty(request.resume), .cwd = m_cwd, .model = unlessEmpty(request.model)};
    wanted.setMode(m_mode);
    if (wanted.threadId)
        wanted.excludeTurns = true;
    const QString method = wanted.threadId ? u"thread/resume"_s : u"thread/start"_s;
    // What Codex says right behind its answer comes behind it on the stream too.
    const auto reply =
        co_await m_rpc->request(method, wanted, m_limits.start, [this](const auto &heard) { noteThread(heard); });
    if (!reply.result)
        co_return std::unexpected(DevEngineError::server(reply.error));
    if (!m_threadId)
        co_return std::unexpected(DevEngineError::server(u"Codex 没有给出线程"_s));
    co_return Done();
}

void CodexEngine::noteThread(const JsonRpcConnection::Reply &reply) {
    const auto answer = answerOf<ThreadAnswer>(reply);
    if (!answer)
        return;
    m_threadId = answer->thread.id;
    m_model = unlessEmpty(answer->thread.model);
    if (!m_model)
        m_model = unlessEmpty(answer->model);
    m_events.tell(SessionStarted{.engineSessionId = m_threadId, .model = m_model});
    m_events.tell(Notice{u"Codex 线程已建：模型 "_s + m_model.value_or(u"未知"_s)});
}

QCoro::Task<DevEngine::Outcome<DevEngine::Sent>> CodexEngine::onSend(QString text) {
    if (!m_threadId)
        co_return std::unexpected(DevEngineError::server(u"线程还没建好"_s));
    const auto denied = std::exchange(m_pendingDenyReason, std::nullopt);
    if (denied)
        text = u"上一次我拒绝了你的操作，原因："_s + *denied + u'\n' + text;
    // Codex takes what is said during a turn into that turn.
    const bool joins = std::exchange(m_running, true);
    if (!joins) {
        m_turnStartedAt = std::chrono::steady_clock::now();
        m_errorShown = false;
        // Nothing of the last turn is under way any more, so the same id would be a new turn's.
        m_lastTurnId.reset();
        m_sentTurnId.reset();
    }
    const StartTurn turn{.threadId = *m_threadId, .input = {{.text = text}}};
    const auto reply = co_await m_rpc->request(u"turn/start"_s, turn, m_limits.turn);
    if (!reply.result) {
        if (!joins && !m_turnId)
            m_running = m_interruptWanted = false;
        if (!m_pendingDenyReason)
            m_pendingDenyReason = denied;
        co_return std::unexpected(DevEngineError::server(reply.error));
    }
    const auto answer = answerOf<TurnAnswer>(reply);
    if (!answer || !answer->turn.id)
        co_return Sent{.joined = joins};
    noteTurn(answer->turn.id);
    // The turn may have ended while this was on its way, and then Codex has begun another one.
    const auto before = std::exchange(m_sentTurnId, answer->turn.id);
    co_return Sent{.joined = before == m_sentTurnId};
}

void CodexEngine::noteTurn(const std::optional<QString> &turnId) {
    // The news of a turn's beginning may come after those of its end.
    if (!turnId || turnId == m_lastTurnId || turnId == m_turnId)
        return;
    if (!std::exchange(m_running, true))
        m_turnStartedAt = std::chrono::steady_clock::now();
    m_turnId = turnId;
    m_errorShown = false;
    if (std::exchange(m_interruptWanted, false))
        m_executor.spawn(interruptTurn(), "CodexEngine::interruptTurn");
}

bool CodexEngine::onRespond(const QString &requestId, const DevPermissionDecision &decision) {
    const auto pending = m_pendingApprovals.extract(requestId);
    if (pending.empty())
        return false;
    const CodexQuestion &question = pending.mapped();
    if (decision.kind == DevPermissionDecision::Kind::allowSession) {
        m_policy.allowForSession(question.call);
    } else if (decision.kind == DevPermissionDecision::Kind::deny && unlessEmpty(decision.reason)) {
        m_pendingDenyReason = decision.reason;
    }
    m_rpc->answer(question.rpcId, question.answer(decision.kind));
    return true;
}

void CodexEngine::onSetMode(DevMode mode) {
    m_mode = mode;
}

void CodexEngine::onInterrupt() {
    if (!m_running)
        return;
    if (m_turnId)
        m_executor.spawn(interruptTurn(), "CodexEngine::interruptTurn");
    else
        m_interruptWanted = true;
}

QCoro::Task<> CodexEngine::interruptTurn() {
    const QString turn = *m_turnId;
    const InterruptTurn wanted{.threadId = *m_threadId, .turnId = turn};
    const auto reply = co_await m_rpc->request(u"turn/interrupt"_s, wanted, m_limits.interrupt);
    if (!reply.result && m_turnId == turn)
        m_events.tell(Notice{u"没能停下："_s + reply.error});
}

void CodexEngine::onStop() {
    if (m_rpc)
        m_rpc->close(u"会话已经结束"_s);
    m_running = false;
    m_threadId.reset();
    m_pendingApprovals.clear();
    DevChildEngine::onStop();
}

void CodexEngine::withdraw(QString id) {
    m_pendingApprovals.erase(id);
    m_events.withdraw(std::move(id));
}

void CodexEngine::withdrawAll() {
    while (!m_pendingApprovals.empty())
        withdraw(m_pendingApprovals.begin()->first);
}

void CodexEngine::yieldAll(CodexItems::Events events) {
    for (DevEvent &event : events)
        m_events.tell(std::move(event));
}

} // namespace lmp
