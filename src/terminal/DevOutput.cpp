#include "terminal/DevOutput.h"

#include "core/Json.h"
#include "terminal/DevQuestionText.h"

#include <QStringList>

#include <utility>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace dev_event;

namespace {

/// What a tool prints is for the agent; a person is shown its beginning.
constexpr qsizetype maxLines = 20;
constexpr qsizetype maxLine = 500;

/// A line that does not end is shown in pieces.
constexpr qsizetype maxPartial = 8 * 1024;

QByteArrayView bytesOf(QStringView text) {
    return {reinterpret_cast<const char *>(text.utf16()), text.size() * qsizetype(sizeof(QChar))};
}

QString cut(QString line) {
    if (line.size() > maxLine)
        line = line.first(maxLine) + u"…"_s;
    return line;
}

/// The first lines of `text`, set off from what is said.
QString quoted(const QString &text) {
    QStringList lines = text.split(u'\n');
    if (lines.last().isEmpty())
        lines.removeLast();
    // How a command ended stands right behind what it printed.
    if (lines.size() > 1 && lines.last().startsWith(u"[exit ") && lines[lines.size() - 2].isEmpty())
        lines.removeAt(lines.size() - 2);
    const auto left = lines.size() - maxLines;
    if (left > 0)
        lines = lines.first(maxLines) << u"…（还有 %1 行）"_s.arg(left);
    for (QString &line : lines)
        line = u"  │ "_s + cut(line);
    return lines.join(u'\n');
}

QString oneLine(const QString &text) {
    return cut(DevQuestionText::visible(text.simplified()));
}

template <class Payload>
QByteArray line(const Payload &payload, std::string_view type) {
    QByteArray text = Json::encode(payload);
    const QByteArray head = "{\"type\":\"" + QByteArray(type.data(), qsizetype(type.size())) + '"';
    return text == "{}" ? head + '}' : head + ',' + text.sliced(1);
}

} // namespace

DevOutput::DevOutput(Console &console, DevEngineKind engine, bool jsonl)
    : m_console(console)
    , m_engine(engine)
    , m_jsonl(jsonl) {}

QString DevOutput::name(DevEngineKind engine) {
    switch (engine) {
    case DevEngineKind::claude:
        return u"Claude Code"_s;
    case DevEngineKind::codex:
        return u"Codex"_s;
    case DevEngineKind::relay:
        break;
    }
    return u"Lumenpair"_s;
}

void DevOutput::event(const DevEvent &event) {
    std::visit(
        [this, &event](const auto &payload) {
            if (m_jsonl)
                m_console.line(line(payload, devEventName(event)));
            else
                show(payload);
        },
        event);
}

void DevOutput::error(const QString &reason) {
    if (m_jsonl)
        return m_console.line(line(Failed{reason}, "error"));
    endReply();
    m_console.error(reason);
}

void DevOutput::note(const QString &text) {
    if (m_jsonl)
        return;
    endReply();
    m_console.note(text);
}

void DevOutput::endReply() {
    if (!std::exchange(m_endsWithLineFeed, true))
        m_console.reply(u"\n"_s);
}

void DevOutput::show(const SessionStarted &started) {
    const QString id = started.engineSessionId.value_or(QString());
    note(u"%1 · 模型 %2 · 会话 %3"_s.arg(name(m_engine), started.model.value_or(u"未知"_s), id));
}

void DevOutput::show(const AssistantDelta &delta) {
    if (delta.text.isEmpty())
        return;
    m_streamed += delta.text;
    m_console.reply(delta.text);
    m_endsWithLineFeed = delta.text.endsWith(u'\n');
}

void DevOutput::show(const AssistantText &message) {
    const QString streamed = std::exchange(m_streamed, {});
    QString rest = message.text;
    if (rest.startsWith(streamed))
        rest.remove(0, streamed.size());
    else
        endReply();
    m_console.reply(rest);
    if (!rest.isEmpty())
        m_endsWithLineFeed = rest.endsWith(u'\n');
    endReply();
}

void DevOutput::Printed::add(const QString &chunk) {
    hash.addData(bytesOf(chunk));
    length += chunk.size();
}

bool DevOutput::Printed::begins(const QString &output) const {
    if (length == 0 || output.size() < length)
        return false;
    const auto beginning = bytesOf(QStringView(output).first(length)).toByteArray();
    return QCryptographicHash::hash(beginning, QCryptographicHash::Sha1) == hash.result();
}

void DevOutput::show(const ToolCall &call) {
    note(u"▸ %1  %2"_s.arg(oneLine(call.name), oneLine(call.summary)));
}

void DevOutput::show(const CommandOutput &output) {
    if (output.chunk.isEmpty())
        return;
    auto &printed = m_printed[output.id];
    printed.add(output.chunk);
    const auto before = printed.partial.size(), end = output.chunk.lastIndexOf(u'\n');
    printed.partial += output.chunk;
    if (end >= 0) {
        note(quoted(printed.partial.first(before + end)));
        printed.partial.remove(0, before + end + 1);
    }
    if (printed.partial.size() > maxPartial)
        note(quoted(std::exchange(printed.partial, {})));
}

void DevOutput::show(const ToolResult &result) {
    QString rest = result.output;
    if (const auto printed = m_printed.extract(result.id); !printed.empty()) {
        // What came while it ran need not be said again, unless something was missing from it.
        if (printed.mapped().begins(rest))
            rest = printed.mapped().partial + rest.sliced(printed.mapped().length);
        else
            note(u"  ╵ 全部输出："_s);
    }
    if (rest.trimmed().isEmpty())
        return;
    if (result.isError)
        return error(quoted(rest));
    note(quoted(rest));
}

void DevOutput::show(const FileChanged &changed) {
    const QString verb = changed.kind == DevFileChangeKind::create   ? u"新建"_s
                         : changed.kind == DevFileChangeKind::remove ? u"删除"_s
                                                                     : u"改了"_s;
    QString lines;
    if (changed.added || changed.removed)
        lines = u"（+%1 −%2）"_s.arg(changed.added.value_or(0)).arg(changed.removed.value_or(0));
    note(verb + u' ' + oneLine(changed.path) + lines);
}

void DevOutput::question(const DevPermissionRequest &request, bool forChoosing) {
    if (m_jsonl)
        return;
    endReply();
    m_console.card(DevQuestionText::of(request, name(m_engine), forChoosing));
}

void DevOutput::show(const TurnCompleted &completed) {
    const DevTurnUsage &usage = completed.usage;
    QStringList parts;
    if (usage.durationMs)
        parts << u"用时 %1 秒"_s.arg(double(*usage.durationMs) / 1000, 0, 'f', 1);
    if (usage.inputTokens || usage.outputTokens)
        parts << (m_engine == DevEngineKind::codex ? u"会话至今输入 %1、输出 %2 token"_s : u"输入 %1、输出 %2 token"_s)
                     .arg(usage.inputTokens.value_or(0))
                     .arg(usage.outputTokens.value_or(0));
    if (usage.costUsd)
        parts << u"会话至今 $%1"_s.arg(*usage.costUsd, 0, 'f', 4);
    if (usage.model)
        parts << *usage.model;
    note(parts.isEmpty() ? u"这一回合结束了。"_s : parts.join(u" · "_s));
}

void DevOutput::show(const Failed &failed) {
    m_streamed.clear();
    error(failed.reason);
}

void DevOutput::show(const Notice &notice) {
    note(notice.text);
}

void DevOutput::show(const Interrupted &) {
    m_streamed.clear();
    note(u"已停下。"_s);
}

} // namespace lmp
