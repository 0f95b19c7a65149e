#pragma once

#include "identity/ChapterDTO.h"
#include "identity/MemoryCandidateDTO.h"
#include "identity/MemoryItemDTO.h"

namespace lmp {

/// The ledger as a whole.
struct MemoryBundle {
    QList<MemoryItemDTO> items;
    QList<MemoryCandidateDTO> candidates;
    QList<ChapterDTO> chapters;
    bool operator==(const MemoryBundle &) const = default;
};
BOOST_DESCRIBE_STRUCT(MemoryBundle, (), (items, candidates, chapters))

} // namespace lmp
