#include "terminal/DevQuestionText.h"

#include "core/Json.h"
#include "dev/DevPermissionPolicy.h"
#include "dev/DevTools.h"
#include "dev/codex/CodexItem.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <utility>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

struct Edit {
    QString old_string = {};
    QString new_string = {};
    JsonRest rest = {};
};
BOOST_DESCRIBE_STRUCT(Edit, (), (old_string, new_string, rest))

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

QString json(const JsonRest &rest) {
    return QString::fromUtf8(Json::encode(boost::json::value(*rest.keys)));
}

/// What the agent says, where a line of ours could stand: its further lines cannot pass for one.
QString inset(QString text) {
    return text.replace(u'\n', u"\n  "_s);
}

QStringList replaced(const Edit &edit) {
    const QString head = edit.rest.keys ? u"@@ "_s + json(edit.rest) : u"@@"_s;
    return QStringList(head) + marked(edit.old_string, u'-') + marked(edit.new_string, u'+');
}

QStringList heads(const QString &from, const QString &to) {
    return {inset(u"--- "_s + from), inset(u"+++ "_s + to)};
}

/// A diff as it came, each line recognisable as a part of it.
QStringList diffLines(const QString &diff) {
    QStringList lines = diff.split(u'\n', Qt::SkipEmptyParts);
    for (QString &line : lines) {
        if (!QStringView(u" +-@\\").contains(line.front()))
            line.prepend(u' ');
    }
    return lines;
}

QStringList change(const CodexFileChange &change) {
    const QString diff = change.diff.value_or(QString());
    const QString from = change.path, to = change.kind.move_path.value_or(change.path);
    if (change.kind.type == "add"_L1)
        return heads(u"/dev/null"_s, to) + marked(diff, u'+');
    if (change.kind.type == "delete"_L1)
        return heads(from, u"/dev/null"_s) + marked(diff, u'-');
    return heads(from, to) + diffLines(diff);
}

/// Signs that a terminal acts on or shows nothing of.
bool isUnseen(char32_t code) {
    static constexpr std::array<char32_t, 8> blank = {0x034f, 0x115f, 0x1160, 0x17b4, 0x17b5, 0x3164, 0xffa0, 0xfffc};
    switch (QChar::category(code)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return std::ranges::find(blank, code) != blank.end() || (code >= 0xe0000 && code < 0xe1000);
    }
}

/// What a field holds, which is shown then and not once more at the end.
template <class T>
std::optional<T> take(std::optional<T> &field) {
    return std::exchange(field, std::nullopt);
}

QStringList fileChange(Input &input) {
    auto path = take(input.file_path);
    if (!path)
        path = take(input.notebook_path);
    if (!path)
        return {};
    QStringList lines = heads(*path, *path);
    if (const auto content = take(input.content))
        lines << marked(*content, u'+');
    if (const auto source = take(input.new_source))
        lines << marked(*source, u'+');
    if (input.old_string || input.new_string)
        lines << replaced({.old_string = take(input.old_string).value_or(QString()),
                           .new_string = take(input.new_string).value_or(QString())});
    for (const Edit &edit : take(input.edits).value_or(QList<Edit>()))
        lines << replaced(edit);
    return lines;
}

QStringList body(Input &input) {
    QStringList lines;
    if (const auto command = take(input.command))
        lines << inset(*command);
    for (const CodexFileChange &one : take(input.changes).value_or(QList<CodexFileChange>()))
        lines << change(one);
    return lines + fileChange(input);
}

/// Of a command's first word, where it is only named.
constexpr qsizetype maxWord = 60;

/// What "for this session" would allow, which is more than this one command.
QString sessionNote(const QString &tool, const std::optional<QString> &command) {
    const auto keys = DevPermissionPolicy::ruleKeys({.tool = tool, .command = command});
    if (DevTools::kindOf(tool) != DevTools::Kind::bash || keys.isEmpty())
        return {};
    return u"\n（选 2 的话，这次会话里所有以「%1」开头的命令都会放行，高风险的除外）"_s.arg(
        DevQuestionText::visible(keys.first().section(u':', 1).left(maxWord)));
}

} // namespace

QString DevQuestionText::of(const DevPermissionRequest &request, const QString &engine, bool forChoosing) {
    auto input = Json::decode<Input>(request.input.toUtf8());
    const auto command = input ? input->command : std::nullopt;
    QStringList lines = input ? body(*input) : QStringList();
    if (lines.isEmpty()) {
        lines << inset(request.summary) << inset(request.input);
    } else {
        if (!command)
            lines.prepend(inset(request.summary));
        if (const auto cwd = take(input->cwd))
            lines << u"目录："_s + inset(*cwd);
        const auto reason = take(input->reason), description = take(input->description);
        // Whatever it is, nothing of it is left out.
        const auto others = QString::fromUtf8(Json::encode(*input));
        if (others != "{}"_L1)
            lines << u"其他："_s + others;
        for (const auto &why : {reason, description}) {
            if (why)
                lines << u"它说的理由："_s + inset(*why);
        }
    }
    return u"%1 想用 %2，要你同意：\n"_s.arg(engine, visible(inset(request.tool))) + visible(lines.join(u'\n')) +
           (forChoosing ? sessionNote(request.tool, command) : QString());
}

QString DevQuestionText::visible(const QString &text) {
    QString shown;
    shown.reserve(text.size());
    const auto codes = text.toUcs4();
    for (const char32_t code : codes) {
        if (code == U'\n' || code == U'\t')
            shown += QChar(code);
        else if (code < 0x20)
            shown += QChar(0x2400 + code);
        else if (code == 0x7f)
            shown += QChar(0x2421);
        else if (isUnseen(code))
            shown += u"<U+%1>"_s.arg(uint(code), 4, 16, QLatin1Char('0'));
        else
            shown += QStringView(QChar::fromUcs4(code));
    }
    return shown;
}

} // namespace lmp
