#pragma once

#include "conversation/SearchTerms.h"

namespace lmp {

/// The line that stands for a message among the results. Free of state; any thread.
class SearchExcerpt {
public:
    static constexpr qsizetype before = 24; ///< UTF-16 units in front of the first match
    static constexpr qsizetype most = 120;

    /// One line of `text` around its first match, with "…" where something is left out; never half a character.
    static QString around(const QString &text, const SearchTerms &terms);
};

} // namespace lmp
