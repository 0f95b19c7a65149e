#pragma once

#include <QList>
#include <QString>

namespace lmp {

/// A text as searching compares it: without the differences of case, width and spelling form that nobody means, white
/// space as single spaces, characters that are not seen left out.
///
/// Free of state; any thread. The index on disk holds what this makes: a change here is a new version of the index.
class SearchFold {
public:
    struct Traced {
        QString text;
        /// For each unit of `text` where it came from, and at the end where the last one ended.
        QList<qsizetype> origins;
    };

    static QString fold(QStringView text);
    /// The same, knowing where in `text` each unit came from.
    static Traced trace(QStringView text);
};

} // namespace lmp
