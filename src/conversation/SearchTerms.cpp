#include "conversation/SearchTerms.h"

#include "core/SearchFold.h"

#include <algorithm>

namespace lmp {

SearchTerms::SearchTerms(const QString &typed) {
    m_words =
        SearchFold::fold(QStringView(typed).first(std::min(typed.size(), longest))).split(u' ', Qt::SkipEmptyParts);
    m_words.removeDuplicates();
}

bool SearchTerms::matches(const QString &folded) const {
    return !isEmpty() && std::ranges::all_of(m_words, [&](const QString &word) { return folded.contains(word); });
}

QList<SearchTerms::Range> SearchTerms::ranges(QStringView text) const {
    return matches(SearchFold::fold(text)) ? anyRanges(text) : QList<Range>();
}

QList<SearchTerms::Range> SearchTerms::anyRanges(QStringView text) const {
    const auto traced = SearchFold::trace(text);
    QList<Range> found;
    for (const QString &word : m_words) {
        for (qsizetype at = traced.text.indexOf(word); at >= 0; at = traced.text.indexOf(word, at + word.size())) {
            // One character may have become several: a match that ends inside it marks all of it.
            qsizetype last = at + word.size();
            while (last + 1 < traced.origins.size() && traced.origins[last] == traced.origins[last - 1])
                ++last;
            found.push_back({traced.origins[at], traced.origins[last] - traced.origins[at]});
        }
    }
    std::ranges::sort(found, {}, &Range::from);
    QList<Range> merged;
    for (const Range &range : found) {
        if (merged.isEmpty() || range.from > merged.back().from + merged.back().length)
            merged.push_back(range);
        else
            merged.back().length = std::max(merged.back().length, range.from + range.length - merged.back().from);
    }
    return merged;
}

} // namespace lmp
