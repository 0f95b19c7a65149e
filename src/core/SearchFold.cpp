#include "core/SearchFold.h"

namespace lmp {

namespace {

/// Characters that stay as they are whatever follows but a mark: what most of a Chinese text consists of.
bool isPlain(char16_t c) {
    return (c >= 0x4e00 && c <= 0x9fff) || (c >= 0x3400 && c <= 0x4dbf) || c == 0x3001 || c == 0x3002 ||
           (c >= 0x300a && c <= 0x3011) || (c >= 0x3041 && c <= 0x3096) || (c >= 0x30a1 && c <= 0x30fa);
}

/// The folded form of the characters that need no tables, or 0.
char16_t simple(char16_t c) {
    if (c >= 0xff01 && c <= 0xff5e) // the full-width forms of ASCII
        c -= 0xfee0;
    if (c >= u'A' && c <= u'Z')
        return c + (u'a' - u'A');
    return (c > u' ' && c < 0x7f) || isPlain(c) ? c : u'\0';
}

bool isMark(char16_t c) {
    return c >= 0x300 && QChar::isMark(c);
}

/// A character with the marks that belong to it.
qsizetype segmentEnd(QStringView text, qsizetype at) {
    const auto step = [&](qsizetype i) {
        return i + 1 < text.size() && text[i].isHighSurrogate() && text[i + 1].isLowSurrogate() ? 2 : 1;
    };
    qsizetype end = at + step(at);
    while (end < text.size() && isMark(text[end].unicode()))
        ++end;
    return end;
}

bool isUnseen(char32_t c) {
    const auto category = QChar::category(c);
    return category == QChar::Other_Format || category == QChar::Other_Control || (c >= 0xfe00 && c <= 0xfe0f) ||
           (c >= 0xe0100 && c <= 0xe01ef);
}

QString byTables(QStringView segment) {
    const QString normal = segment.toString().normalized(QString::NormalizationForm_KC);
    const QString folded = normal.toCaseFolded().normalized(QString::NormalizationForm_KC);
    QString kept;
    for (const char32_t c : folded.toUcs4()) {
        if (QChar::isSpace(c))
            kept += u' ';
        else if (!isUnseen(c))
            kept += QChar::fromUcs4(c);
    }
    return kept;
}

/// Calls `put(unit, origin)` for every folded unit.
template <class Put>
void foldInto(QStringView text, Put put) {
    bool afterSpace = false;
    const auto add = [&](QChar unit, qsizetype origin) {
        const bool space = unit == u' ';
        if (!space || !afterSpace)
            put(unit, origin);
        afterSpace = space;
    };
    for (qsizetype at = 0; at < text.size();) {
        const char16_t c = simple(text[at].unicode());
        if (c && (at + 1 == text.size() || !isMark(text[at + 1].unicode()))) {
            add(QChar(c), at++);
            continue;
        }
        const qsizetype end = segmentEnd(text, at);
        for (const QChar unit : byTables(text.sliced(at, end - at)))
            add(unit, at);
        at = end;
    }
}

} // namespace

QString SearchFold::fold(QStringView text) {
    QString folded;
    folded.reserve(text.size());
    foldInto(text, [&](QChar unit, qsizetype) { folded += unit; });
    return folded;
}

SearchFold::Traced SearchFold::trace(QStringView text) {
    Traced traced;
    traced.text.reserve(text.size());
    traced.origins.reserve(text.size() + 1);
    foldInto(text, [&](QChar unit, qsizetype origin) {
        traced.text += unit;
        traced.origins.push_back(origin);
    });
    traced.origins.push_back(text.size());
    return traced;
}

} // namespace lmp
