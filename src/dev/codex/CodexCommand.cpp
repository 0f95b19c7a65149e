#include "dev/codex/CodexCommand.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace lmp::codex_command {

namespace {

/// The words of a command as a shell would take them, when quoting is all there is to it: none where a word ends in the
/// middle of a quotation, or where anything but words is on the line.
std::optional<QStringList> words(QStringView command) {
    QStringList found;
    QString word;
    bool inWord = false;
    QChar quote;
    for (qsizetype i = 0; i < command.size(); ++i) {
        const QChar c = command[i];
        const bool last = i + 1 == command.size();
        if (quote == u'\'') {
            c == quote ? void(quote = {}) : void(word += c);
        } else if (quote == u'"') {
            static constexpr QStringView escapable = u"\"\\$`";
            if (c == u'\\' && !last && escapable.contains(command[i + 1]))
                word += command[++i];
            else if (c == u'$' || c == u'`')
                return std::nullopt;
            else
                c == quote ? void(quote = {}) : void(word += c);
        } else if (c == u'\'' || c == u'"') {
            quote = c;
            inWord = true;
        } else if (c == u'\\') {
            if (last)
                return std::nullopt;
            word += command[++i];
            inWord = true;
        } else if (c == u' ' || c == u'\t') {
            if (std::exchange(inWord, false))
                found << std::exchange(word, {});
        } else if (QStringView(u"\n\r;&|<>()$`#*?[]{}~!").contains(c)) {
            return std::nullopt;
        } else {
            word += c;
            inWord = true;
        }
    }
    if (!quote.isNull())
        return std::nullopt;
    if (inWord)
        found << word;
    return found;
}

bool isShell(QStringView program) {
    static constexpr std::array<QStringView, 6> shells{u"bash", u"sh", u"zsh", u"dash", u"ksh", u"fish"};
    return std::ranges::find(shells, program.sliced(program.lastIndexOf(u'/') + 1)) != shells.end();
}

/// "-c", "-lc" and the like: the word behind it is the script.
bool takesScript(QStringView option) {
    return option.size() > 1 && option[0] == u'-' && option.back() == u'c' &&
           std::ranges::all_of(option.sliced(1), [](QChar c) { return c.isLetter(); });
}

} // namespace

QString withoutShell(const QString &command) {
    QString inner = command;
    // A shell that only starts another one hides the command just as well.
    for (int depth = 0; depth < 8; ++depth) {
        const auto found = words(inner);
        if (!found || found->size() != 3 || !isShell(found->at(0)) || !takesScript(found->at(1)))
            break;
        inner = found->at(2);
    }
    return inner;
}

} // namespace lmp::codex_command
