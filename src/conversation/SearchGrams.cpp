#include "conversation/SearchGrams.h"

#include <QStringList>

#include <algorithm>

namespace lmp {

namespace {

/// The table's tokeniser cuts at every other ASCII character, so those are written as characters of private use.
constexpr char32_t privateUse = 0xf780;

bool cuts(char32_t c) {
    const bool kept = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    return c < 0x80 && !kept;
}

void append(QByteArray &out, char32_t c) {
    if (cuts(c))
        c += privateUse;
    const auto put = [&out](char32_t byte) {
        out += char(byte);
    };
    const auto rest = [&](int shift) {
        put(0x80 | ((c >> shift) & 0x3f));
    };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xc0 | (c >> 6));
        rest(0);
    } else if (c < 0x10000) {
        put(0xe0 | (c >> 12));
        rest(6);
        rest(0);
    } else {
        put(0xf0 | (c >> 18));
        rest(12);
        rest(6);
        rest(0);
    }
}

QByteArray gram(const QList<uint> &characters, qsizetype at, qsizetype length) {
    QByteArray bytes;
    for (qsizetype i = at; i < at + length; ++i)
        append(bytes, characters[i]);
    return bytes;
}

} // namespace

QByteArray SearchGrams::of(const QString &folded) {
    const QList<uint> characters = folded.toUcs4();
    QByteArray grams;
    grams.reserve(characters.size() * 20);
    for (qsizetype at = 0; at < characters.size(); ++at) {
        for (qsizetype length = 1; length <= most && at + length <= characters.size(); ++length) {
            if (characters[at + length - 1] == ' ')
                break;
            grams += gram(characters, at, length);
            grams += ' ';
        }
    }
    return grams;
}

QByteArray SearchGrams::query(const QStringList &words) {
    QByteArrayList grams;
    for (const QString &word : words) {
        const QList<uint> characters = word.toUcs4();
        const qsizetype length = std::min(most, characters.size());
        for (qsizetype at = 0; at < characters.size(); at += length)
            grams.push_back('"' + gram(characters, std::min(at, characters.size() - length), length) + '"');
    }
    std::ranges::sort(grams);
    grams.erase(std::unique(grams.begin(), grams.end()), grams.end());
    return grams.join(" AND ");
}

bool SearchGrams::isExact(const QStringList &words) {
    return std::ranges::all_of(words, [](const QString &word) { return word.toUcs4().size() <= most; });
}

} // namespace lmp
