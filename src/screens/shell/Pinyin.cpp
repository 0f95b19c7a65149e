#include "screens/shell/Pinyin.h"

#include <QMutex>

#include <unicode/translit.h>
#include <unicode/uscript.h>

#include <array>
#include <memory>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

bool isHan(char32_t character) {
    UErrorCode status = U_ZERO_ERROR;
    return uscript_getScript(UChar32(character), &status) == USCRIPT_HAN;
}

char32_t characterAt(const QString &text, qsizetype at) {
    const QChar unit = text[at];
    if (unit.isHighSurrogate() && at + 1 < text.size())
        return QChar::surrogateToUcs4(unit, text[at + 1]);
    return unit.unicode();
}

/// Cuts a title into characters and words; blanks and signs between them are not typed.
SpelledTitle cut(const QString &title) {
    SpelledTitle spelled;
    bool inWord = false;
    for (qsizetype at = 0; at < title.size();) {
        const char32_t character = characterAt(title, at);
        const qsizetype length = QChar::requiresSurrogates(character) ? 2 : 1;
        const QString text = title.sliced(at, length).toLower();
        const bool letter = QChar::isLetterOrNumber(character);
        const bool han = isHan(character);
        if (letter && !han && inWord)
            spelled.units.back().text += text;
        else if (letter)
            spelled.units.push_back({.at = at, .text = text, .readings = {}});
        inWord = letter && !han;
        at += length;
    }
    return spelled;
}

/// What is typed for a syllable with its tone: the tone goes, and ü is v or u.
QStringList readings(const QString &syllable) {
    QString plain;
    for (const QChar character : syllable.normalized(QString::NormalizationForm_D)) {
        if (character == QChar(0x0308))
            plain += u'\x0308';
        else if (character.isLetter())
            plain += character.toLower();
    }
    if (!plain.contains(u'\x0308'))
        return {plain};
    return {QString(plain).replace(u"u\x0308"_s, u"v"_s), QString(plain).remove(u'\x0308')};
}

/// Further readings of characters that people meet every day; the rules know one, by the neighbours or the commonest.
struct Reading {
    char16_t character;
    const char16_t *spoken;
};
constexpr std::array furtherReadings{
    Reading{u'长', u"chang"}, Reading{u'长', u"zhang"}, Reading{u'重', u"chong"}, Reading{u'重', u"zhong"},
    Reading{u'行', u"hang"},  Reading{u'行', u"xing"},  Reading{u'乐', u"yue"},   Reading{u'乐', u"le"},
    Reading{u'觉', u"jiao"},  Reading{u'觉', u"jue"},   Reading{u'还', u"huan"},  Reading{u'还', u"hai"},
    Reading{u'都', u"du"},    Reading{u'都', u"dou"},   Reading{u'得', u"dei"},   Reading{u'得', u"de"},
    Reading{u'会', u"kuai"},  Reading{u'会', u"hui"},   Reading{u'调', u"diao"},  Reading{u'调', u"tiao"},
    Reading{u'朝', u"zhao"},  Reading{u'朝', u"chao"},  Reading{u'传', u"zhuan"}, Reading{u'传', u"chuan"},
    Reading{u'弹', u"dan"},   Reading{u'弹', u"tan"},   Reading{u'藏', u"zang"},  Reading{u'藏', u"cang"},
    Reading{u'差', u"chai"},  Reading{u'差', u"cha"},   Reading{u'校', u"jiao"},  Reading{u'校', u"xiao"},
    Reading{u'便', u"pian"},  Reading{u'便', u"bian"},  Reading{u'种', u"chong"}, Reading{u'种', u"zhong"},
    Reading{u'率', u"shuai"}, Reading{u'率', u"lv"},    Reading{u'圈', u"juan"},  Reading{u'圈', u"quan"},
    Reading{u'着', u"zhao"},  Reading{u'着', u"zhe"},   Reading{u'参', u"shen"},  Reading{u'参', u"can"},
    Reading{u'降', u"xiang"}, Reading{u'降', u"jiang"}, Reading{u'角', u"jue"},   Reading{u'角', u"jiao"},
};

void addFurtherReadings(SpelledTitle::Unit &unit) {
    for (const Reading &further : furtherReadings) {
        const auto spoken = QString::fromUtf16(further.spoken);
        if (unit.text == QChar(further.character) && !unit.readings.contains(spoken))
            unit.readings << spoken;
    }
}

icu::Transliterator *reader() {
    static const auto made = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::Transliterator> rules(
            icu::Transliterator::createInstance("Han-Latin", UTRANS_FORWARD, status));
        return U_SUCCESS(status) ? std::move(rules) : nullptr;
    }();
    return made.get();
}

/// Reads `count` characters at once, since many are read by their neighbours.
void readRun(const QString &title, SpelledTitle &spelled, std::size_t first, std::size_t count) {
    const auto &last = spelled.units[first + count - 1];
    const qsizetype from = spelled.units[first].at;
    icu::UnicodeString text(reinterpret_cast<const char16_t *>(title.utf16()) + from,
                            int32_t(last.at + last.text.size() - from));
    reader()->transliterate(text);
    const QStringList syllables =
        QString(reinterpret_cast<const QChar *>(text.getBuffer()), text.length()).split(u' ', Qt::SkipEmptyParts);
    // What has no reading stays as it is, and may stick to its neighbour.
    if (syllables.size() != qsizetype(count))
        return;
    for (std::size_t at = 0; at < count; ++at) {
        spelled.units[first + at].readings = readings(syllables[qsizetype(at)]);
        addFurtherReadings(spelled.units[first + at]);
    }
}

void read(const QString &title, SpelledTitle &spelled) {
    const auto isRead = [&](std::size_t unit) {
        return isHan(characterAt(title, spelled.units[unit].at));
    };
    for (std::size_t unit = 0; unit < spelled.units.size();) {
        std::size_t end = unit;
        while (end < spelled.units.size() && isRead(end) &&
               (end == unit || spelled.units[end].at == spelled.units[end - 1].at + spelled.units[end - 1].text.size()))
            ++end;
        if (end > unit)
            readRun(title, spelled, unit, end - unit);
        unit = std::max(end, unit + 1);
    }
}

constexpr int none = -1;

int smaller(int one, int other) {
    return one == none || (other != none && other < one) ? other : one;
}

/// What it costs to type `spelling`, or its beginning, as the next letters of `typed` from `from` on; `after` holds the
/// cost of what is left then.
int typedAs(const QString &spelling, const QString &typed, qsizetype from, const std::vector<int> &after, int cost) {
    int best = none;
    for (qsizetype length = 1;
         length <= std::min(spelling.size(), typed.size() - from) && spelling[length - 1] == typed[from + length - 1];
         ++length) {
        const int rest = after[std::size_t(from + length)];
        if (rest != none)
            best = smaller(best, rest + cost + (length < spelling.size() ? 1 : 0));
    }
    return best;
}

} // namespace

int SpelledTitle::rank(const QString &typed) const {
    constexpr int notAtTheBeginning = 10;
    // From the last unit to the first: what it costs to type the letters from each place on.
    std::vector<int> after(std::size_t(typed.size()) + 1, none);
    after.back() = 0;
    int best = typed.isEmpty() ? 0 : none;
    for (std::size_t unit = units.size(); unit-- > 0;) {
        std::vector<int> costs(after.size(), none);
        costs.back() = 0;
        for (qsizetype from = 0; from < typed.size(); ++from) {
            int &cost = costs[std::size_t(from)];
            cost = typedAs(units[unit].text, typed, from, after, 0);
            for (const QString &reading : units[unit].readings)
                cost = smaller(cost, typedAs(reading, typed, from, after, 1));
        }
        after = std::move(costs);
        if (after[0] != none)
            best = smaller(best, after[0] + (unit == 0 ? 0 : notAtTheBeginning));
    }
    return best;
}

std::vector<SpelledTitle> Pinyin::plain(const QStringList &titles) {
    std::vector<SpelledTitle> all;
    all.reserve(std::size_t(titles.size()));
    for (const QString &title : titles)
        all.push_back(cut(title));
    return all;
}

std::vector<SpelledTitle> Pinyin::spell(const QStringList &titles) {
    static QMutex mutex;
    const QMutexLocker lock(&mutex);
    auto all = plain(titles);
    if (!reader())
        return all;
    for (qsizetype at = 0; at < titles.size(); ++at)
        read(titles[at], all[std::size_t(at)]);
    return all;
}

} // namespace lmp
