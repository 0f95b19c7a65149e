#pragma once

#include <QString>

namespace lmp {

/// Words of others (the service, a file, another person) made fit for places of this program's own: a title, a name, a
/// chip, a banner, a line of a terminal. What acts instead of being read is taken out: control characters, and those
/// that turn the direction of what follows, with which a title could rewrite the line it stands in. Text that runs from
/// right to left stays as it is, with the marks that only place a neutral character.
///
/// Used where something becomes a text of the screen. Records keep what the service sent, since some of it goes back
/// there; those that are only ever shown (the reason of a failed request, safety cards) are made with it at once. The
/// text of a message has rules of its own and does not come here. Any thread; nothing fails, and the price depends on
/// what is kept, not on what was sent.
class PlainLabel {
public:
    static constexpr qsizetype longestLine = 200;      ///< UTF-16 units of a title or a name
    static constexpr qsizetype longestSentence = 400;  ///< of a reason or a note in a banner
    static constexpr int mostSentenceLines = 8;        ///
    static constexpr qsizetype longestContent = 4'000; ///< of what is read for itself: guidance, a memory, notes
    static constexpr int mostContentLines = 80;        ///

    /// One line: blanks of any kind are one blank, and none at the ends.
    static QString line(QStringView text, qsizetype longest = longestLine);
    /// Sentences with their own lines. What has more than `mostLines` goes on in the last one.
    static QString lines(QStringView text, qsizetype longest = longestSentence, int mostLines = mostSentenceLines);
    /// The same for what is read for itself.
    static QString content(QStringView text) { return lines(text, longestContent, mostContentLines); }

    /// Whether `c` acts instead of being read. Line feed and tab do not count.
    static bool acts(QChar c);
};

} // namespace lmp
