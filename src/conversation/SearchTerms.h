#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace lmp {

/// What somebody looks for: the words of the search box, each of which a text must hold somewhere.
///
/// A value; any thread.
class SearchTerms {
public:
    /// A part of a text, in UTF-16 units.
    struct Range {
        qsizetype from = 0;
        qsizetype length = 0;
        bool operator==(const Range &) const = default;
    };
    /// Longer input is cut: nobody looks for an essay, and each word costs a pass.
    static constexpr qsizetype longest = 200;

    SearchTerms() = default;
    explicit SearchTerms(const QString &typed);

    bool isEmpty() const { return m_words.isEmpty(); }
    /// Folded, without spaces, each once.
    const QStringList &words() const { return m_words; }
    /// Whether a folded text holds every word.
    bool matches(const QString &folded) const;
    /// Where `text` (as it is written) holds the words, in order and without overlaps; nothing unless it holds them
    /// all.
    QList<Range> ranges(QStringView text) const;
    /// Where it holds any of them.
    QList<Range> anyRanges(QStringView text) const;

    bool operator==(const SearchTerms &) const = default;

private:
    QStringList m_words;
};

} // namespace lmp
