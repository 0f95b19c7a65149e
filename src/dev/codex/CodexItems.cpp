#include "dev/codex/CodexItems.h"

#include "dev/codex/CodexCommand.h"
#include "dev/codex/CodexInput.h"

#include <utility>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace dev_event;

namespace {

struct SearchInput {
    QString query = {};
};
BOOST_DESCRIBE_STRUCT(SearchInput, (), (query))

struct ContentPart {
    std::optional<QString> text = {};
};
BOOST_DESCRIBE_STRUCT(ContentPart, (), (text))

struct ToolOutput {
    std::optional<QList<ContentPart>> content = {};
    std::optional<QString> message = {}; ///< of an error
};
BOOST_DESCRIBE_STRUCT(ToolOutput, (), (content, message))

template <class T>
QString text(const T &value) {
    return QString::fromUtf8(Json::encode(value));
}

bool isTool(const QString &type) {
    return type == "commandExecution"_L1 || type == "fileChange"_L1 || type == "mcpToolCall"_L1 ||
           type == "webSearch"_L1;
}

DevFileChangeKind kindOf(const CodexChangeKind &kind) {
    if (kind.type == "update"_L1)
        return DevFileChangeKind::modify;
    return kind.type == "delete"_L1 ? DevFileChangeKind::remove : DevFileChangeKind::create;
}

/// What a tool has answered, as text: its words where it has any, else all of it.
QString outputText(const boost::json::value &value) {
    if (const auto *words = value.if_string())
        return detail::jsonText(*words);
    const auto output = Json::fromValue<ToolOutput>(value);
    if (output && output->message)
        return *output->message;
    QStringList parts;
    for (const ContentPart &part : output ? output->content.value_or(QList<ContentPart>()) : QList<ContentPart>()) {
        if (part.text)
            parts << *part.text;
    }
    return parts.isEmpty() ? text(value) : parts.join(u'\n');
}

qint64 lineCount(const QString &content) {
    return content.count(u'\n') + (content.isEmpty() || content.endsWith(u'\n') ? 0 : 1);
}

} // namespace

void CodexItems::started(const CodexItem &item, Events &out) {
    if (item.type == "agentMessage"_L1) {
        // One message at a time: one that is still open was cut off, and is said again from its beginning.
        closeMessages(out);
    } else if (isTool(item.type) && !m_open.contains(item.id) && !m_closed.contains(item.id)) {
        startedTool(item, out);
    }
}

void CodexItems::startedTool(const CodexItem &item, Events &out) {
    if (item.type == "commandExecution"_L1) {
        startedCommand(item, out);
    } else if (item.type == "fileChange"_L1) {
        const auto changes = item.changes.value_or(QList<CodexFileChange>());
        m_changes.insert(item.id, changes);
        open(item,
             {.name = u"apply_patch"_s,
              .summary = summary(changes),
              .input = text(CodexChangeInput{.changes = changes})},
             out);
    } else if (item.type == "webSearch"_L1) {
        const QString query = item.query.value_or(QString());
        open(item, {.name = u"web_search"_s, .summary = query, .input = text(SearchInput{query})}, out);
    } else {
        const QString tool = item.tool.value_or(QString()), server = item.server.value_or(QString());
        open(item,
             {.name = tool,
              .summary = server.isEmpty() ? tool : server + u" · "_s + tool,
              .input = text(item.arguments.value_or(boost::json::object()))},
             out);
    }
}

void CodexItems::startedCommand(const CodexItem &item, Events &out) {
    const QString command = codex_command::withoutShell(item.command.value_or(QString()));
    m_commandByItem.insert(item.id, command);
    open(item,
         {.name = u"bash"_s, .summary = command, .input = text(CodexCommandInput{.command = command, .cwd = item.cwd})},
         out);
}

void CodexItems::open(const CodexItem &item, ToolCall call, Events &out) {
    call.id = item.id;
    m_open << item.id;
    out.emplace_back(std::move(call));
}

void CodexItems::close(const QString &id, QString output, bool isError, Events &out) {
    m_open.removeOne(id);
    m_commandByItem.remove(id);
    m_changes.remove(id);
    noteClosed(id);
    out.emplace_back(ToolResult{.id = id, .output = std::move(output), .isError = isError});
}

void CodexItems::noteClosed(const QString &id) {
    if (m_closed.contains(id))
        return;
    m_closed.insert(id);
    m_closedInOrder.enqueue(id);
    if (m_closedInOrder.size() > maxClosed)
        m_closed.remove(m_closedInOrder.dequeue());
}

void CodexItems::completed(const CodexItem &item, Events &out) {
    if (m_closed.contains(item.id))
        return;
    if (item.type == "agentMessage"_L1) {
        const QString streamed = m_agentTextByItem.take(item.id);
        m_messages.removeOne(item.id);
        const QString whole = item.text && !item.text->isEmpty() ? *item.text : streamed;
        if (!whole.isEmpty())
            out.emplace_back(AssistantText{whole});
        return;
    }
    if (!isTool(item.type))
        return;
    if (!m_open.contains(item.id))
        startedTool(item, out);
    if (item.type == "commandExecution"_L1)
        completedCommand(item, out);
    else if (item.type == "fileChange"_L1)
        completedChange(item, out);
    else
        completedTool(item, out);
}

void CodexItems::completedCommand(const CodexItem &item, Events &out) {
    QString output = item.aggregatedOutput.value_or(QString());
    if (item.exitCode)
        output += u"\n[exit %1]"_s.arg(*item.exitCode);
    const bool refused = item.status == "declined"_L1;
    if (refused && output.isEmpty())
        output = u"被拒绝，没有执行。"_s;
    const bool good = item.status.value_or(u"completed"_s) == "completed"_L1 && item.exitCode.value_or(0) == 0;
    close(item.id, output, !good, out);
}

void CodexItems::completedChange(const CodexItem &item, Events &out) {
    const auto changes = item.changes.value_or(m_changes.value(item.id));
    const bool good = item.status.value_or(u"completed"_s) == "completed"_L1;
    for (const CodexFileChange &change : good ? changes : QList<CodexFileChange>()) {
        const Lines lines = count(change);
        out.emplace_back(FileChanged{
            .path = change.path, .kind = kindOf(change.kind), .added = lines.added, .removed = lines.removed});
    }
    const bool refused = item.status == "declined"_L1;
    close(item.id, good ? summary(changes) : refused ? u"被拒绝，没有改动。"_s : u"没有改成。"_s, !good, out);
}

void CodexItems::completedTool(const CodexItem &item, Events &out) {
    const bool failed = item.error.has_value();
    const bool good = !failed && item.status.value_or(u"completed"_s) == "completed"_L1;
    QString output;
    if (failed || item.result)
        output = outputText(failed ? *item.error : *item.result);
    close(item.id, output, !good, out);
}

void CodexItems::messageDelta(const codex_message::MessageDelta &delta, Events &out) {
    if (m_closed.contains(delta.itemId))
        return;
    if (!m_agentTextByItem.contains(delta.itemId)) {
        closeMessages(out);
        m_messages << delta.itemId;
    }
    QString &streamed = m_agentTextByItem[delta.itemId];
    streamed += QStringView(delta.delta).left(maxStreamed - streamed.size());
    out.emplace_back(AssistantDelta{delta.delta});
}

void CodexItems::outputDelta(const codex_message::OutputDelta &delta, Events &out) {
    if (m_open.contains(delta.itemId))
        out.emplace_back(CommandOutput{.id = delta.itemId, .chunk = delta.delta});
}

void CodexItems::closeMessages(Events &out) {
    for (const QString &id : std::exchange(m_messages, {})) {
        noteClosed(id);
        if (const QString said = m_agentTextByItem.take(id); !said.isEmpty())
            out.emplace_back(AssistantText{said});
    }
}

void CodexItems::closeAll(Events &out) {
    closeMessages(out);
    for (const QString &id : QStringList(m_open))
        close(id, u"已中断"_s, true, out);
}

CodexItems::Lines CodexItems::count(const CodexFileChange &change) {
    const QString diff = change.diff.value_or(QString());
    const bool whole = change.kind.type != "update"_L1 && !diff.startsWith("@@ "_L1);
    if (whole && change.kind.type == "delete"_L1)
        return {.removed = lineCount(diff)};
    if (whole)
        return {.added = lineCount(diff)};
    Lines lines;
    bool inHunk = false;
    for (const QStringView line : QStringView(diff).split(u'\n')) {
        // The names of the files stand before the first hunk and look like changed lines.
        inHunk = inHunk || line.startsWith("@@"_L1);
        lines.added += inHunk && line.startsWith(u'+');
        lines.removed += inHunk && line.startsWith(u'-');
    }
    return lines;
}

QString CodexItems::summary(const QList<CodexFileChange> &changes) {
    QStringList paths;
    for (const CodexFileChange &change : changes) {
        paths << (change.kind.move_path ? u"%1 → %2"_s.arg(change.path, *change.kind.move_path) : change.path);
    }
    return paths.join(u"、"_s);
}

} // namespace lmp
