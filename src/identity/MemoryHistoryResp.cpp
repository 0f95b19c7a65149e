#include "identity/MemoryHistoryResp.h"

namespace lmp {

QList<MemoryHistoryEntryDTO> MemoryHistoryResp::oldestFirst() const {
    const bool newestFirst = entries.size() > 1 && entries.first().next == current && entries.last().next != current;
    return newestFirst ? QList<MemoryHistoryEntryDTO>(entries.rbegin(), entries.rend()) : entries;
}

} // namespace lmp
