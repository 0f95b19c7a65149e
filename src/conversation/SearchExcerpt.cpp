#include "conversation/SearchExcerpt.h"

#include <QRegularExpression>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// How much of a long text is looked through for the first match.
constexpr qsizetype lookedThrough = 20'000;

/// Where the character at `at` begins. Boundaries do not depend on what is far away.
qsizetype boundary(const QString &text, qsizetype at) {
    constexpr qsizetype near = 100;
    const qsizetype from = std::max<qsizetype>(0, at - near);
    const QString piece = text.mid(from, 2 * near);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, piece);
    finder.setPosition(at - from);
    return finder.isAtBoundary() ? at : from + finder.toPreviousBoundary();
}

std::optional<qsizetype> firstMatch(const QString &text, const SearchTerms &terms) {
    auto found = terms.anyRanges(QStringView(text).first(std::min(text.size(), lookedThrough)));
    if (found.isEmpty())
        found = terms.anyRanges(text);
    return found.isEmpty() ? std::nullopt : std::optional(found.first().from);
}

/// A piece of Markdown as it is read: the words of a link, and no signs that only say how words look. Signs that have
/// lost their partner to the cut stay.
QString asRead(QString piece) {
    static const QRegularExpression link(uR"(!?\[([^\]\n]*)\]\([^)\n]*\))"_s);
    static const QRegularExpression opening(
        uR"(^[ \t]*(?:#{1,6}[ \t]+|(?:>[ \t]?)+|[-*+][ \t]+(?:\[[ xX]\][ \t]+)?|```.*$))"_s,
        QRegularExpression::MultilineOption);
    static const QRegularExpression strong(uR"((\*{1,3}|~~)(?=\S)([^*~\n]*?[^*~\s])\1)"_s);
    static const QRegularExpression code(uR"(`([^`\n]+)`)"_s);
    return piece.replace(link, uR"(\1)"_s).remove(opening).replace(strong, uR"(\2)"_s).replace(code, uR"(\1)"_s);
}

} // namespace

QString SearchExcerpt::around(const QString &text, const SearchTerms &terms, TalkRole role) {
    qsizetype match = firstMatch(text, terms).value_or(0);
    const qsizetype pieceFrom = boundary(text, std::max<qsizetype>(0, match - 2 * most));
    QString piece = text.mid(pieceFrom, 5 * most);
    const bool ends = pieceFrom + piece.size() == text.size();
    match -= pieceFrom;
    if (role == TalkRole::twin) {
        const QString read = asRead(piece);
        if (const auto there = firstMatch(read, terms)) { // not when the signs themselves are looked for
            piece = read;
            match = *there;
        }
    }
    const qsizetype from = boundary(piece, match > before + before ? match - before : 0);
    const qsizetype to = boundary(piece, std::min(piece.size(), from + most));
    QString line = piece.sliced(from, to - from).simplified();
    if (pieceFrom + from > 0)
        line.prepend(u'…');
    if (!ends || to < piece.size())
        line.append(u'…');
    return line;
}

} // namespace lmp
