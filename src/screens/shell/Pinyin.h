#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace lmp {

/// A title as it can be typed: one unit a Chinese character or a word of letters, with what one may type for it.
struct SpelledTitle {
    struct Unit {
        qsizetype at = 0;     ///< where it begins in the title
        QString text;         ///< lower case, as it is written
        QStringList readings; ///< lower case, without tones; empty for what is only typed as it is written
    };
    std::vector<Unit> units;

    /// How well `typed` (lower case, without blanks) names the title: smaller is better, negative is not at all.
    /// Characters, whole readings, their beginnings and their initials may be mixed, from any unit on.
    int rank(const QString &typed) const;
};

/// Reads Chinese characters aloud, without tones.
///
/// Free of state but for ICU's rules, which are loaded at the first use: that takes a tenth of a second or two, and
/// belongs on another thread. Any thread, one at a time.
class Pinyin {
public:
    /// @return the titles' spellings, in their order
    static std::vector<SpelledTitle> spell(const QStringList &titles);
    /// The titles without any reading: what can be matched before the rules are there.
    static std::vector<SpelledTitle> plain(const QStringList &titles);
};

} // namespace lmp
