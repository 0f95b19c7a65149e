#include "identity/MemorySearch.h"

#include "core/SearchFold.h"

#include <algorithm>

namespace lmp {

QString MemorySearch::folded(const MemoryItemDTO &item) {
    return SearchFold::fold(item.content + u'\n' + item.source + u'\n' + item.scope);
}

QStringList MemorySearch::words(const QString &typed) {
    return SearchFold::fold(typed).split(u' ', Qt::SkipEmptyParts);
}

bool MemorySearch::matches(const QString &folded, const QStringList &words) {
    return std::ranges::all_of(words, [&](const QString &word) { return folded.contains(word); });
}

} // namespace lmp
