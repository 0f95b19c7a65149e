#include "conversation/SearchExcerpt.h"

#include <QTextBoundaryFinder>

#include <algorithm>

namespace lmp {

namespace {

/// How much of a long text is looked through for the first match.
constexpr qsizetype lookedThrough = 20'000;

qsizetype boundary(const QString &text, qsizetype at) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    finder.setPosition(at);
    return finder.isAtBoundary() ? at : finder.toPreviousBoundary();
}

} // namespace

QString SearchExcerpt::around(const QString &text, const SearchTerms &terms) {
    auto found = terms.anyRanges(QStringView(text).first(std::min(text.size(), lookedThrough)));
    if (found.isEmpty())
        found = terms.anyRanges(text);
    const qsizetype match = found.isEmpty() ? 0 : found.first().from;
    // A piece of the text is enough: boundaries do not depend on what is far away.
    const qsizetype start = match > before + before ? match - before : 0;
    const qsizetype pieceFrom = std::max<qsizetype>(0, start - most);
    const QString piece = text.mid(pieceFrom, 3 * most);
    const qsizetype from = boundary(piece, start - pieceFrom);
    const qsizetype to = boundary(piece, std::min(piece.size(), from + most));
    QString line = piece.sliced(from, to - from).simplified();
    if (pieceFrom + from > 0)
        line.prepend(u'…');
    if (pieceFrom + to < text.size())
        line.append(u'…');
    return line;
}

} // namespace lmp
