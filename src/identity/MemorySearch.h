#pragma once

#include "identity/MemoryItemDTO.h"

#include <QStringList>

namespace lmp {

/// Finds memories by words of one character or more, folded as every search here folds them. Pure; any thread.
class MemorySearch {
public:
    /// What of a memory is searched, folded; worth keeping where the same memories are searched again and again.
    static QString folded(const MemoryItemDTO &item);
    /// The words that somebody looks for, folded.
    static QStringList words(const QString &typed);
    /// Whether every word occurs in what is folded.
    static bool matches(const QString &folded, const QStringList &words);
};

} // namespace lmp
