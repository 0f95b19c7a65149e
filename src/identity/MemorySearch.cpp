#include "identity/MemorySearch.h"

#include <algorithm>

namespace lmp {

QString MemorySearch::fold(const QString &text) {
    return text.normalized(QString::NormalizationForm_KC).toCaseFolded();
}

QString MemorySearch::folded(const MemoryItemDTO &item) {
    return fold(item.content + u'\n' + item.source + u'\n' + item.scope);
}

QStringList MemorySearch::words(const QString &typed) {
    return fold(typed).simplified().split(u' ', Qt::SkipEmptyParts);
}

bool MemorySearch::matches(const QString &folded, const QStringList &words) {
    return std::ranges::all_of(words, [&](const QString &word) { return folded.contains(word); });
}

} // namespace lmp
