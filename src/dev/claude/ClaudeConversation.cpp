#include "dev/claude/ClaudeConversation.h"

#include "dev/DevPathForms.h"
#include "dev/DevTools.h"
#include "dev/claude/ClaudeCommand.h"

#include <QFileInfo>
#include <QVersionNumber>

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace claude_message;

namespace {

constexpr qsizetype maxSummary = 200;

/// The result of a call that the user's interruption ended; the tool's own words are addressed to its model.
const auto cutShort = u"已中断"_s;

/// What the tool's model is told then.
const auto interruptedByUser = u"用户中断"_s;

/// The last version that does not go on with the input it has asked about.
const QVersionNumber firstWithoutInput(2, 1, 300);

/// One line that tells what a call is about.
QString summaryOf(const DevPermissionPolicy::Call &call) {
    QString summary = call.tool;
    if (DevTools::kindOf(call.tool) == DevTools::Kind::bash && call.command)
        summary = *call.command;
    else if (!call.paths.isEmpty())
        summary = call.paths.first();
    const bool isLong = summary.size() > maxSummary;
    summary = summary.left(maxSummary).simplified();
    return isLong ? summary + u'…' : summary;
}

/// What a call does to its file when it goes well; only one tool makes files.
std::optional<DevFileChangeKind> changeOf(const DevPermissionPolicy::Call &call, const QString &directory) {
    static const QStringList editing = {u"Edit"_s,      u"Write"_s,      u"MultiEdit"_s,  u"NotebookEdit"_s,
                                        u"edit_file"_s, u"write_file"_s, u"apply_patch"_s};
    if (call.paths.isEmpty() || !editing.contains(call.tool))
        return std::nullopt;
    const bool makes = DevTools::kindOf(call.tool) == DevTools::Kind::write_file;
    const auto place = DevPathForms::clean(call.paths.first().toStdString(), directory.toStdString());
    return makes && !QFileInfo::exists(QString::fromStdString(place)) ? DevFileChangeKind::create
                                                                      : DevFileChangeKind::modify;
}

} // namespace

void ClaudeConversation::take(QByteArrayView line) {
    if (const auto message = ClaudeMessage::read(line))
        std::visit([this](const auto &what) { handle(what); }, message->what);
}

void ClaudeConversation::end(const QString &why) {
    tellHeld();
    closeAll();
    withdrawAll();
    m_running = false;
    m_events.push_back(dev_event::Failed{why});
}

void ClaudeConversation::send(const QString &text) {
    beginTurn();
    m_lines.push_back(ClaudeCommand::turn(text));
}

void ClaudeConversation::beginTurn() {
    if (std::exchange(m_running, true))
        return;
    m_interrupted = false;
    m_sinceStart.start();
}

bool ClaudeConversation::respond(const QString &requestId, const DevPermissionDecision &decision) {
    const auto found = std::ranges::find(m_questions, requestId, &Question::requestId);
    if (found == m_questions.end())
        return false;
    const Question question = std::move(*found);
    m_questions.erase(found);
    if (decision.kind == DevPermissionDecision::Kind::deny) {
        const auto usual = u"用户拒绝了这次操作，换个做法或先问清楚。"_s;
        m_lines.push_back(ClaudeCommand::deny(requestId, decision.reason.value_or(usual), false));
        return true;
    }
    if (decision.kind == DevPermissionDecision::Kind::allowSession)
        m_policy.allowForSession(question.call);
    allow(question);
    return true;
}

void ClaudeConversation::interrupt() {
    for (const auto &question : m_questions)
        m_lines.push_back(ClaudeCommand::deny(question.requestId, interruptedByUser, true));
    withdrawAll();
    m_lines.push_back(ClaudeCommand::interrupt(u"lmp-%1"_s.arg(++m_requests)));
    m_interrupted = m_running;
    m_events.push_back(dev_event::Interrupted());
}

void ClaudeConversation::handle(const Init &init) {
    beginTurn(); // also of one that was sent while another ran
    const bool isNew = !m_init || m_init->sessionId != init.sessionId || m_init->model != init.model;
    m_init = init;
    if (isNew)
        m_events.push_back(dev_event::SessionStarted{init.sessionId, init.model});
}

void ClaudeConversation::handle(const Said &said) {
    tellHeld();
    for (const auto &block : said.blocks) {
        if (const auto *text = std::get_if<Text>(&block))
            say(*text, said.byTool);
        else
            open(std::get<ToolUse>(block));
    }
}

void ClaudeConversation::say(const Text &text, bool byTool) {
    if (!byTool)
        m_events.push_back(dev_event::AssistantText{text.text});
    else if (!m_interrupted)
        m_held = m_held.value_or(QString()) + text.text;
}

void ClaudeConversation::tellHeld() {
    if (auto held = std::exchange(m_held, {}))
        m_events.push_back(dev_event::AssistantText{*std::move(held)});
}

void ClaudeConversation::open(const ToolUse &use) {
    const auto &paths = use.call.paths;
    m_calls.push_back(
        {.id = use.id, .path = paths.isEmpty() ? QString() : paths.first(), .change = changeOf(use.call, m_directory)});
    m_events.push_back(dev_event::ToolCall{use.id, use.call.tool, summaryOf(use.call), use.input});
}

void ClaudeConversation::handle(const ToolResults &results) {
    if (results.results.empty())
        return;
    tellHeld();
    for (const auto &result : results.results)
        close(result);
}

void ClaudeConversation::close(const ToolResult &result) {
    const bool wasCut = m_interrupted && result.isError;
    m_events.push_back(dev_event::ToolResult{result.id, wasCut ? cutShort : result.output, result.isError});
    const auto found = std::ranges::find(m_calls, result.id, &OpenCall::id);
    if (found == m_calls.end())
        return;
    const OpenCall call = std::move(*found);
    m_calls.erase(found);
    if (call.change && !result.isError)
        m_events.push_back(dev_event::FileChanged{.path = call.path, .kind = *call.change});
}

/// No result comes any more for what is still open.
void ClaudeConversation::closeAll() {
    for (const auto &call : std::exchange(m_calls, {}))
        m_events.push_back(dev_event::ToolResult{call.id, cutShort, true});
}

void ClaudeConversation::handle(const TurnEnd &end) {
    const bool failed = end.isError && !m_interrupted;
    if (failed && m_held && end.text.trimmed() == m_held->trimmed())
        m_held.reset();
    tellHeld();
    closeAll();
    withdrawAll();
    if (failed)
        m_events.push_back(dev_event::Failed{end.text.isEmpty() ? u"这一回合失败了（CLI 没说原因）"_s : end.text});
    dev_event::TurnCompleted completed{end.usage};
    if (!completed.usage.durationMs && m_sinceStart.isValid())
        completed.usage.durationMs = m_sinceStart.elapsed();
    if (!completed.usage.model && m_init)
        completed.usage.model = m_init->model;
    m_events.push_back(std::move(completed));
    m_running = false;
}

void ClaudeConversation::handle(const Question &question) {
    // It was under way when the interruption was; nobody is to be asked about a turn that is over.
    if (m_interrupted)
        return m_lines.push_back(ClaudeCommand::deny(question.requestId, interruptedByUser, true));
    const auto verdict = m_policy.evaluate(question.call, m_mode, m_directory);
    switch (verdict.outcome) {
    case DevPermissionPolicy::Verdict::Outcome::allow:
        return allow(question);
    case DevPermissionPolicy::Verdict::Outcome::deny:
        m_lines.push_back(ClaudeCommand::deny(question.requestId, verdict.reason, false));
        m_events.push_back(dev_event::Notice{u"按当前档位挡下了 "_s + question.call.tool + u"："_s + verdict.reason});
        return;
    case DevPermissionPolicy::Verdict::Outcome::ask:
        break;
    }
    m_questions.push_back(question);
    m_events.push_back(DevPermissionRequest{.id = question.requestId,
                                            .tool = question.call.tool,
                                            .summary = summaryOf(question.call),
                                            .input = question.input});
}

void ClaudeConversation::handle(const Withdrawal &withdrawal) {
    if (std::erase_if(m_questions, [&](const Question &one) { return one.requestId == withdrawal.requestId; }) > 0)
        m_withdrawn.append(withdrawal.requestId);
}

void ClaudeConversation::withdrawAll() {
    for (const auto &question : std::exchange(m_questions, {}))
        m_withdrawn.append(question.requestId);
}

void ClaudeConversation::handle(const OtherRequest &request) {
    m_lines.push_back(ClaudeCommand::unsupported(request.requestId));
}

void ClaudeConversation::allow(const Question &question) {
    m_lines.push_back(
        ClaudeCommand::allow(question.requestId, needsInput() ? std::optional(question.input) : std::nullopt));
}

bool ClaudeConversation::needsInput() const {
    return m_init && m_init->version && QVersionNumber::fromString(*m_init->version) < firstWithoutInput;
}

} // namespace lmp
