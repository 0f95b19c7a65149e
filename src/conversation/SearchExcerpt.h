#pragma once

#include "conversation/SearchTerms.h"
#include "conversation/TalkRole.h"

namespace lmp {

/// The line that stands for a message among the results. Free of state; any thread.
class SearchExcerpt {
public:
    static constexpr qsizetype before = 24; ///< UTF-16 units in front of the first match
    static constexpr qsizetype most = 120;

    /// One line of `text` around its first match, with "…" where something is left out; never half a character.
    /// @param role whose text it is: a reply is Markdown, and shown without its marks
    static QString around(const QString &text, const SearchTerms &terms, TalkRole role);
};

} // namespace lmp
