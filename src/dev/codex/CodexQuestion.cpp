#include "dev/codex/CodexQuestion.h"

#include "dev/DevPathForms.h"
#include "dev/DevTools.h"
#include "dev/codex/CodexCommand.h"
#include "dev/codex/CodexInput.h"

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

struct CommandParams {
    std::optional<QString> kind = {};
    std::optional<QString> itemId = {};
    std::optional<QString> command = {};
    std::optional<QString> cwd = {};
    std::optional<QString> reason = {};
};
BOOST_DESCRIBE_STRUCT(CommandParams, (), (kind, itemId, command, cwd, reason))

struct ChangeParams {
    std::optional<QString> itemId = {};
    std::optional<QString> reason = {};
    std::optional<QString> grantRoot = {};
};
BOOST_DESCRIBE_STRUCT(ChangeParams, (), (itemId, reason, grantRoot))

struct PermissionParams {
    std::optional<QString> cwd = {};
    std::optional<QString> reason = {};
    boost::json::value permissions = {};
};
BOOST_DESCRIBE_STRUCT(PermissionParams, (), (cwd, reason, permissions))

struct ElicitationMeta {
    std::optional<QString> codex_approval_kind = {};
    std::optional<QString> tool_name = {};
    std::optional<boost::json::value> tool_params = {};
};
BOOST_DESCRIBE_STRUCT(ElicitationMeta, (), (codex_approval_kind, tool_name, tool_params))

struct ElicitationParams {
    std::optional<QString> serverName = {};
    std::optional<QString> message = {};
    std::optional<ElicitationMeta> _meta = {};
};
BOOST_DESCRIBE_STRUCT(ElicitationParams, (), (serverName, message, _meta))

// What the user is shown whole.

struct ToolInput {
    std::optional<QString> server = {};
    boost::json::value arguments = {};
};
BOOST_DESCRIBE_STRUCT(ToolInput, (), (server, arguments))

template <class T>
QString text(const T &value) {
    return QString::fromUtf8(Json::encode(value));
}

/// Also through links, and where they lead to what is not there yet. Where that cannot be told it is outside.
bool isInside(const QString &path, const QString &repository) {
    const auto folder = repository.toStdString();
    const auto root = DevPathForms::resolved(folder, "/"), found = DevPathForms::resolved(path.toStdString(), folder);
    return root && found && (*found == *root || found->starts_with(*root == "/" ? *root : *root + '/'));
}

CodexQuestion command(const CommandParams &params, const CodexItems &items) {
    CodexQuestion question{.kind = CodexQuestion::Kind::Command, .tool = u"bash"_s};
    QString command = params.command ? codex_command::withoutShell(*params.command)
                                     : items.command(params.itemId.value_or(QString()));
    question.input = text(CodexCommandInput{.command = command, .cwd = params.cwd, .reason = params.reason});
    // Without a command it is something else that is wanted, the network for instance.
    question.mustAsk = command.isEmpty() || params.kind.value_or(u"command"_s) != "command"_L1;
    question.call = {.tool = question.tool, .command = command, .directory = params.cwd};
    question.summary = !command.isEmpty() ? command : params.reason.value_or(u"Codex 没说要做什么"_s);
    return question;
}

CodexQuestion change(const ChangeParams &params, const CodexItems &items, const QString &repository) {
    CodexQuestion question{.kind = CodexQuestion::Kind::FileChange, .tool = u"apply_patch"_s};
    const auto changes = items.changes(params.itemId.value_or(QString()));
    question.input = text(CodexChangeInput{.changes = changes, .grantRoot = params.grantRoot, .reason = params.reason});
    QStringList outside;
    if (params.grantRoot && !isInside(*params.grantRoot, repository))
        outside << *params.grantRoot;
    const bool rootIsOutside = !outside.isEmpty();
    question.call.tool = question.tool;
    for (const CodexFileChange &one : changes)
        question.call.paths << one.path << (one.kind.move_path ? QStringList(*one.kind.move_path) : QStringList());
    for (const QString &path : std::as_const(question.call.paths)) {
        if (!rootIsOutside && !isInside(path, repository))
            outside << path;
    }
    // Inside, but not for that a place that anything may be written to.
    if (params.grantRoot)
        question.call.paths << *params.grantRoot;
    // What is not known cannot be judged either.
    question.mustAsk = !outside.isEmpty() || changes.isEmpty();
    question.summary =
        outside.isEmpty() ? CodexItems::summary(changes) : u"要在仓库外写文件："_s + outside.join(u"、"_s);
    if (question.summary.isEmpty())
        question.summary = params.reason.value_or(u"Codex 没说要改什么"_s);
    return question;
}

CodexQuestion permissions(const PermissionParams &params) {
    return {.kind = CodexQuestion::Kind::Permissions,
            .tool = u"request_permissions"_s,
            .summary = u"要更多权限："_s + params.reason.value_or(text(params.permissions)),
            .input = text(params),
            .call = {.tool = u"request_permissions"_s},
            .mustAsk = true,
            .permissions = params.permissions};
}

std::optional<CodexQuestion> mcpTool(const ElicitationParams &params) {
    if (!params._meta || params._meta->codex_approval_kind != "mcp_tool_call"_L1 || !params._meta->tool_name)
        return std::nullopt;
    CodexQuestion question{.kind = CodexQuestion::Kind::McpTool, .tool = *params._meta->tool_name};
    const auto arguments = params._meta->tool_params.value_or(boost::json::object());
    question.summary = params.message.value_or(question.tool);
    question.input = text(ToolInput{.server = params.serverName, .arguments = arguments});
    // The server chose the name: whatever it is called, it is not one of the agent's own tools that only read.
    const bool looksHarmless = DevTools::isRead(DevTools::kindOf(question.tool));
    question.call =
        DevPermissionPolicy::Call::of(looksHarmless ? u"mcp__"_s + question.tool : question.tool,
                                      arguments.is_object() ? arguments.get_object() : boost::json::object());
    return question;
}

template <class Params>
Params read(const codex_message::Request &request) {
    return Json::fromValue<Params>(request.params).value_or(Params());
}

} // namespace

std::optional<CodexQuestion> CodexQuestion::of(const codex_message::Request &request, const CodexItems &items,
                                               const QString &repository) {
    std::optional<CodexQuestion> question;
    if (request.method == "item/commandExecution/requestApproval"_L1)
        question = command(read<CommandParams>(request), items);
    else if (request.method == "item/fileChange/requestApproval"_L1)
        question = change(read<ChangeParams>(request), items, repository);
    else if (request.method == "item/permissions/requestApproval"_L1)
        question = lmp::permissions(read<PermissionParams>(request));
    else if (request.method == "mcpServer/elicitation/request"_L1)
        question = mcpTool(read<ElicitationParams>(request));
    if (question)
        question->rpcId = request.id;
    return question;
}

DevPermissionRequest CodexQuestion::request() const {
    return {.id = rpcId.text(), .tool = tool, .summary = summary, .input = input};
}

boost::json::value CodexQuestion::answer(DevPermissionDecision::Kind decision) const {
    const bool allowed = decision != DevPermissionDecision::Kind::deny;
    const bool session = decision == DevPermissionDecision::Kind::allowSession;
    const char *word = session ? "acceptForSession" : allowed ? "accept" : "decline";
    switch (kind) {
    case Kind::Command:
    case Kind::FileChange:
        return {{"decision", word}};
    case Kind::Permissions:
        return {{"decision", word},
                {"permissions", allowed ? permissions : boost::json::object()},
                {"scope", session ? "session" : "turn"}};
    case Kind::McpTool:
        break;
    }
    boost::json::object answer{{"action", allowed ? "accept" : "decline"}};
    if (allowed)
        answer["content"] = boost::json::object();
    if (session)
        answer["_meta"] = {{"persist", "session"}};
    return answer;
}

} // namespace lmp
