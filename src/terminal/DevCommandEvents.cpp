#include "core/Detach.h"
#include "terminal/DevCommand.h"

#include <QPointer>

#include <algorithm>

// What happens during a session: the agent's events, the questions to the user, a program's commands.

namespace lmp {

using namespace Qt::StringLiterals;
using namespace dev_event;

namespace {

QCoro::Task<> dropped(QCoro::Task<DevEngine::Done> task) {
    co_await task;
}

} // namespace

QCoro::Task<> DevCommand::follow(Channel<DevEvent> events) {
    while (const auto event = co_await events.next())
        onEvent(*event);
    if (!m_leaving && !m_stopped)
        endStream();
    m_followed.resolve(true);
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
    m_questions << request;
    const bool asks = !m_line.allow && !m_line.jsonl && m_console.inputIsTerminal();
    if (!asks)
        m_output.question(request);
    if (m_line.allow) {
        m_output.note(m_line.allow == Kind::allowSession ? u"按 --allow session 放行。"_s
                                                         : u"按 --allow once 放行。"_s);
        respond(request.id, {.kind = *m_line.allow});
    } else if (!asks && (!m_line.jsonl || m_inputEnded)) {
        const QString reason = u"这里没有人可以问，所以拒绝了；要放行，用 --allow once 或 --allow session。"_s;
        m_output.note(reason);
        respond(request.id, DevPermissionDecision::deny(reason));
    } else if (asks && !m_asking) {
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
        m_input.cancel();
}

QCoro::Task<> DevCommand::ask() {
    m_asking = true;
    while (!m_questions.isEmpty()) {
        const auto asked = m_questions.first();
        m_output.question(asked);
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
        if (choice != u'4')
            continue;
        const auto reason = co_await m_input.line(u"为什么："_s);
        if (reason && !reason->trimmed().isEmpty())
            co_return DevPermissionDecision::deny(reason->trimmed());
    }
    co_return std::nullopt;
}

QCoro::Task<> DevCommand::listen() {
    while (!isOver()) {
        const auto text = co_await m_input.line({});
        if (!text)
            break;
        if (isOver() || text->trimmed().isEmpty())
            continue;
        const auto control = DevControl::parse(text->toUtf8());
        if (control)
            obey(*control);
        else
            m_output.error(control.error());
    }
    endInput();
    m_listened.resolve(true);
}

void DevCommand::endInput() {
    m_inputEnded = true;
    // Nobody is left to answer.
    const auto open = m_questions;
    for (const DevPermissionRequest &request : open)
        respond(request.id, DevPermissionDecision::deny(u"没有人回答，所以拒绝了。"_s));
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
