#include "core/Detach.h"
#include "terminal/DevCommand.h"

#include <QPointer>

#include <algorithm>

// What happens during a session: the agent's events, the questions to the user, a program's commands.

namespace lmp {

using namespace Qt::StringLiterals;
using namespace dev_event;

QCoro::Task<> DevCommand::follow(Channel<DevEvent> events) {
    while (const auto event = co_await events.next()) {
        onEvent(*event);
        // A slow reader slows the agent, and one who has gone ends its work.
        co_await m_console.drained();
        if (m_console.outputIsClosed() && !isOver()) {
            m_stopped = true;
            changed();
        }
    }
    if (!m_leaving && !m_stopped)
        endStream();
    m_followed.resolve(true);
}

QCoro::Task<> DevCommand::followWithdrawn(Channel<QString> ids) {
    const QPointer<QObject> self(this);
    while (const auto id = co_await ids.next()) {
        if (!self)
            co_return;
        onWithdrawn(*id);
    }
}

void DevCommand::onWithdrawn(const QString &requestId) {
    const bool isShown = m_asking && !m_questions.isEmpty() && m_questions.first().id == requestId;
    const auto removed =
        m_questions.removeIf([&](const DevPermissionRequest &request) { return request.id == requestId; });
    if (removed == 0)
        m_withdrawn.insert(requestId);
    if (!isShown)
        return;
    keep(m_input.cancel());
    m_output.note(u"这个问题已经不用回答了。"_s);
}

void DevCommand::onEvent(const DevEvent &event) {
    m_output.event(event);
    const bool claude = m_line.engine == DevEngineKind::claude;
    if (const auto *request = std::get_if<DevPermissionRequest>(&event)) {
        onQuestion(*request);
    } else if (std::holds_alternative<TurnCompleted>(event)) {
        endTurn(m_turnInterrupted ? ExitCode::Stopped : m_failed ? ExitCode::Failed : ExitCode::Submitted);
    } else if (std::holds_alternative<Interrupted>(event)) {
        m_turnInterrupted = true;
        dropQuestions();
        // Claude Code still reports what the turn has cost.
        if (!claude)
            endTurn(ExitCode::Stopped);
    } else if (std::holds_alternative<Failed>(event)) {
        m_failed = true;
        if (!claude)
            endTurn(ExitCode::Failed);
    }
}

void DevCommand::endTurn(ExitCode outcome) {
    if (m_turns == 0)
        return;
    --m_turns;
    m_outcome = outcome;
    m_failed = m_turnInterrupted = false;
    dropQuestions();
    changed();
}

void DevCommand::endStream() {
    m_ended = true;
    m_outcome = ExitCode::Failed;
    m_turns = 0;
    dropQuestions();
    m_input.cancel();
    changed();
}

void DevCommand::onQuestion(const DevPermissionRequest &request) {
    using Kind = DevPermissionDecision::Kind;
    if (m_withdrawn.remove(request.id))
        return;
    m_questions << request;
    const bool asks = !m_line.allow && !m_line.jsonl && m_console.inputIsTerminal();
    if (!asks)
        m_output.question(request, false);
    if (m_line.allow) {
        m_output.note(m_line.allow == Kind::allowSession ? u"按 --allow session 放行。"_s
                                                         : u"按 --allow once 放行。"_s);
        respond(request.id, {.kind = *m_line.allow});
    } else if (!asks && (!m_line.jsonl || m_inputEnded)) {
        const QString reason = u"这里没有人可以问，所以拒绝了；要放行，用 --allow once 或 --allow session。"_s;
        m_output.note(reason);
        respond(request.id, DevPermissionDecision::deny(reason));
    } else if (asks && !m_asking) {
        m_promptCancelled = m_input.isWaiting();
        m_typed += m_input.takeAway();
        detach(ask(), "DevCommand::ask");
    }
}

void DevCommand::respond(const QString &requestId, DevPermissionDecision decision) {
    m_questions.removeIf([&](const DevPermissionRequest &request) { return request.id == requestId; });
    detach(answer(requestId, std::move(decision)), "DevCommand::respond");
}

QCoro::Task<> DevCommand::answer(QString requestId, DevPermissionDecision decision) {
    const QPointer<QObject> self(this);
    const bool waited = co_await m_engine->respond(requestId, std::move(decision));
    if (!self || waited || isOver())
        co_return;
    if (m_line.jsonl)
        m_output.error(u"这个问题已经不用回答了："_s + requestId);
    else
        m_output.note(u"这个问题已经不用回答了。"_s);
}

void DevCommand::dropQuestions() {
    m_questions.clear();
    if (m_asking)
        keep(m_input.cancel());
}

void DevCommand::denyQuestions(const QString &reason) {
    const auto open = m_questions;
    for (const DevPermissionRequest &request : open)
        respond(request.id, DevPermissionDecision::deny(reason));
    if (m_asking)
        keep(m_input.cancel());
}

void DevCommand::keep(const QString &typed) {
    static const QStringList answers{u"1"_s, u"2"_s, u"3"_s, u"4"_s};
    if (!m_typed.isEmpty() && !answers.contains(typed.trimmed()))
        m_typed += typed;
}

QCoro::Task<> DevCommand::ask() {
    m_asking = true;
    while (!m_questions.isEmpty()) {
        const auto asked = m_questions.first();
        // What was typed before a question was seen is no answer to it.
        m_typed += m_input.takeTypedAhead();
        m_output.question(asked, true);
        auto answer = co_await decision();
        if (answer && !m_questions.isEmpty() && m_questions.first() == asked)
            respond(asked.id, *std::move(answer));
    }
    m_asking = false;
    changed();
}

QCoro::Task<std::optional<DevPermissionDecision>> DevCommand::decision() {
    const auto stillAsked = [this] {
        return !m_questions.isEmpty();
    };
    while (stillAsked()) {
        const auto typed = co_await m_input.line(u"1 允许这一次 · 2 本次会话都允许 · 3 拒绝 · 4 拒绝并说明："_s);
        if (!stillAsked())
            break;
        const QString choice = typed ? typed->trimmed() : u"3"_s;
        if (choice == u'1')
            co_return DevPermissionDecision::allowOnce();
        if (choice == u'2')
            co_return DevPermissionDecision::allowSession();
        if (choice == u'3')
            co_return DevPermissionDecision::deny();
        if (choice != u'4') {
            keep(*typed);
            continue;
        }
        const auto reason = co_await m_input.line(u"为什么："_s);
        if (!reason || reason->trimmed().isEmpty())
            continue;
        if (m_line.engine == DevEngineKind::codex && stillAsked())
            m_output.note(u"理由会和你的下一句话一起告诉 Codex。"_s);
        co_return DevPermissionDecision::deny(reason->trimmed());
    }
    co_return std::nullopt;
}

namespace {

using Control = std::expected<DevControl, QString>;

/// What the line says, or what is wrong with it; none when there is none.
std::optional<Control> controlIn(const std::optional<QString> &text, StandardInput::Trouble trouble) {
    if (trouble == StandardInput::Trouble::TooLong)
        return Control(std::unexpect, u"这一行太长了，没有照做"_s);
    if (trouble == StandardInput::Trouble::NotText)
        return Control(std::unexpect, u"这一行看不懂：不是 UTF-8"_s);
    if (!text || text->trimmed().isEmpty())
        return std::nullopt;
    return DevControl::parse(text->toUtf8());
}

} // namespace

QCoro::Task<> DevCommand::listen() {
    while (!isOver()) {
        const auto text = co_await m_input.line({});
        const auto control = isOver() ? std::nullopt : controlIn(text, m_input.trouble());
        if (!control) {
            if (!text && m_input.trouble() == StandardInput::Trouble::None)
                break;
            continue;
        }
        if (*control) {
            obey(**control);
        } else {
            m_output.error(control->error());
            co_await m_console.drained();
        }
    }
    endInput();
    m_listened.resolve(true);
}

void DevCommand::endInput() {
    m_inputEnded = true;
    // Nobody is left to answer.
    denyQuestions(u"没有人回答，所以拒绝了。"_s);
    changed();
}

void DevCommand::obey(const DevControl &control) {
    if (const auto *words = std::get_if<DevControl::Send>(&control.what)) {
        submit(words->text);
    } else if (const auto *response = std::get_if<DevControl::Respond>(&control.what)) {
        obeyResponse(*response);
    } else if (const auto *wanted = std::get_if<DevControl::SetMode>(&control.what)) {
        detach(dropped(m_engine->setMode(wanted->mode)), "DevCommand::obey");
    } else if (std::holds_alternative<DevControl::Interrupt>(control.what)) {
        // Claude Code says that it was interrupted even where nothing runs, and the next turn would take that for its
        // own.
        const bool isIdle = m_turns == 0 && m_questions.isEmpty() && m_line.engine == DevEngineKind::claude;
        if (isIdle)
            return;
        detach(dropped(m_engine->interrupt()), "DevCommand::obey");
    } else {
        m_stopped = true;
        changed();
    }
}

void DevCommand::obeyResponse(const DevControl::Respond &response) {
    const bool open = std::ranges::any_of(
        m_questions, [&](const DevPermissionRequest &request) { return request.id == response.requestId; });
    if (open)
        return respond(response.requestId, response.decision);
    m_output.error(u"没有这个编号的问题在等回答："_s + response.requestId);
}

} // namespace lmp
