#include "core/PlainLabel.h"

#include <QTextBoundaryFinder>

namespace lmp {

namespace {

/// How much is read for each unit that is kept: a megabyte of blanks is not worth reading to its end.
constexpr qsizetype readPerKept = 16;

/// `text`, or as many whole characters of it as leave room for the dots.
QString bounded(QString text, qsizetype longest, bool more) {
    if (text.size() <= longest && !more)
        return text;
    const qsizetype room = std::min(text.size(), longest - 1);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    finder.setPosition(room);
    qsizetype cut = finder.isAtBoundary() ? room : finder.toPreviousBoundary();
    // Something that never ends is cut anywhere, but for the middle of a pair.
    if (cut <= 0)
        cut = room > 0 && text.at(room - 1).isHighSurrogate() ? room - 1 : room;
    text.truncate(cut);
    return text + QChar(u'…');
}

bool breaksLine(QChar c) {
    return c == u'\n' || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
}

} // namespace

bool PlainLabel::acts(QChar c) {
    const char16_t code = c.unicode();
    const bool control = code < u' ' || (code >= 0x7f && code <= 0x9f);
    const bool turns = (code >= 0x202a && code <= 0x202e) || (code >= 0x2066 && code <= 0x2069);
    return (control && code != u'\n' && code != u'\t') || turns;
}

QString PlainLabel::line(QStringView text, qsizetype longest) {
    QString kept;
    bool blank = false;
    const qsizetype end = std::min(text.size(), longest * readPerKept);
    qsizetype at = 0;
    for (; at < end && kept.size() <= longest; ++at) {
        const QChar c = text[at];
        // A carriage return or a form feed parts words as well.
        if (c.isSpace())
            blank = !kept.isEmpty();
        else if (!acts(c)) {
            if (std::exchange(blank, false))
                kept += u' ';
            kept += c;
        }
    }
    return bounded(std::move(kept), longest, at < text.size());
}

QString PlainLabel::lines(QStringView text, qsizetype longest, int mostLines) {
    QString kept;
    int breaks = 0;
    const qsizetype end = std::min(text.size(), longest * readPerKept);
    qsizetype at = 0;
    for (; at < end && kept.size() <= longest; ++at) {
        const QChar c = text[at];
        if (breaksLine(c))
            kept += ++breaks < mostLines ? u'\n' : u' ';
        else if (!acts(c))
            kept += c;
    }
    return bounded(std::move(kept), longest, at < text.size());
}

} // namespace lmp
