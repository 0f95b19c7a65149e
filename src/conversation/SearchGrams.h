#pragma once

#include <QByteArray>
#include <QString>

namespace lmp {

/// What the index knows a text by: every run of one, two and three characters in it, so that one Chinese character is
/// found as quickly as a sentence. (The usual tokenisers cut at spaces, or know runs of three and more only.)
///
/// Free of state; any thread. Part of the index's format, as SearchFold is.
class SearchGrams {
public:
    static constexpr qsizetype most = 3;

    /// Of a folded text: UTF-8 with spaces between the grams, none of which reaches over a space of the text.
    static QByteArray of(const QString &folded);
    /// A query that finds every text holding all of `words`. Whether a longer word is really there is not certain.
    static QByteArray query(const QStringList &words);
    /// Whether `query` finds nothing else.
    static bool isExact(const QStringList &words);
};

} // namespace lmp
