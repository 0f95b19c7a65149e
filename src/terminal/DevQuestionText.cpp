#include "terminal/DevQuestionText.h"

#include "core/Json.h"
#include "dev/codex/CodexItem.h"

#include <QStringList>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

struct Edit {
    QString old_string = {};
    QString new_string = {};
};
BOOST_DESCRIBE_STRUCT(Edit, (), (old_string, new_string))

/// What the tools of both agents are given, as far as it has a better form than JSON.
struct Input {
    std::optional<QString> command = {};
    std::optional<QString> cwd = {};
    std::optional<QString> reason = {};
    std::optional<QString> description = {};
    std::optional<QString> file_path = {};
    std::optional<QString> notebook_path = {};
    std::optional<QString> content = {};
    std::optional<QString> old_string = {};
    std::optional<QString> new_string = {};
    std::optional<QString> new_source = {};
    std::optional<QList<Edit>> edits = {};
    std::optional<QList<CodexFileChange>> changes = {};
    JsonRest rest = {};
};
BOOST_DESCRIBE_STRUCT(Input, (),
                      (command, cwd, reason, description, file_path, notebook_path, content, old_string, new_string,
                       new_source, edits, changes, rest))

/// Each line of `text` behind `sign`.
QStringList marked(const QString &text, QChar sign) {
    QStringList lines = text.split(u'\n');
    if (lines.last().isEmpty())
        lines.removeLast();
    for (QString &line : lines)
        line.prepend(sign);
    return lines;
}

QStringList replaced(const Edit &edit) {
    return QStringList(u"@@"_s) + marked(edit.old_string, u'-') + marked(edit.new_string, u'+');
}

QStringList change(const CodexFileChange &change) {
    const QString diff = change.diff.value_or(QString());
    const QString from = change.path, to = change.kind.move_path.value_or(change.path);
    if (change.kind.type == "add"_L1)
        return QStringList{u"--- /dev/null"_s, u"+++ "_s + to} + marked(diff, u'+');
    if (change.kind.type == "delete"_L1)
        return QStringList{u"--- "_s + from, u"+++ /dev/null"_s} + marked(diff, u'-');
    return QStringList{u"--- "_s + from, u"+++ "_s + to} + diff.split(u'\n', Qt::SkipEmptyParts);
}

QStringList body(const Input &input) {
    QStringList lines;
    if (input.command)
        lines << *input.command;
    for (const CodexFileChange &one : input.changes.value_or(QList<CodexFileChange>()))
        lines << change(one);
    const auto path = input.file_path ? input.file_path : input.notebook_path;
    if (path) {
        lines << u"--- "_s + *path << u"+++ "_s + *path;
        if (input.content)
            lines << marked(*input.content, u'+');
        if (input.new_source)
            lines << marked(*input.new_source, u'+');
        if (input.new_string)
            lines << replaced({input.old_string.value_or(QString()), *input.new_string});
        for (const Edit &edit : input.edits.value_or(QList<Edit>()))
            lines << replaced(edit);
    }
    return lines;
}

} // namespace

QString DevQuestionText::of(const DevPermissionRequest &request, const QString &engine) {
    const auto input = Json::decode<Input>(request.input.toUtf8());
    QStringList lines = input ? body(*input) : QStringList();
    // Whatever it is, nothing of it is left out.
    if (lines.isEmpty()) {
        lines << request.summary << request.input;
    } else {
        if (!input->command)
            lines.prepend(request.summary);
        if (input->cwd)
            lines << u"目录："_s + *input->cwd;
        if (input->rest.keys)
            lines << u"其他："_s + QString::fromUtf8(Json::encode(boost::json::value(*input->rest.keys)));
        if (const auto why = input->reason ? input->reason : input->description)
            lines << u"它说的理由："_s + *why;
    }
    return u"%1 想用 %2，要你同意：\n"_s.arg(engine, visible(request.tool)) + visible(lines.join(u'\n'));
}

QString DevQuestionText::visible(const QString &text) {
    QString shown;
    shown.reserve(text.size());
    for (const QChar c : text) {
        const auto code = c.unicode();
        const bool turns = (code >= 0x200b && code <= 0x200f) || (code >= 0x202a && code <= 0x202e) ||
                           (code >= 0x2060 && code <= 0x2069) || code == 0xfeff;
        if (c == u'\n' || c == u'\t')
            shown += c;
        else if (code < 0x20)
            shown += QChar(0x2400 + code);
        else if (code == 0x7f)
            shown += QChar(0x2421);
        else if (turns || (code >= 0x80 && code <= 0x9f))
            shown += u"<U+%1>"_s.arg(code, 4, 16, QLatin1Char('0'));
        else
            shown += c;
    }
    return shown;
}

} // namespace lmp
