#pragma once

#include "identity/MemoryHistoryEntryDTO.h"

#include <QList>

#include <optional>

namespace lmp {

/// How a memory came to its present wording, and the token that an edit of it must name.
struct MemoryHistoryResp {
    std::optional<QString> revision; ///< without one nothing can be edited safely
    QString memoryId;
    QString current; ///< wording
    QList<MemoryHistoryEntryDTO> entries;
    bool canRevert = false;

    /// The entries from the oldest to the newest, whichever way the service tells them: the newest leads to `current`.
    QList<MemoryHistoryEntryDTO> oldestFirst() const;

    bool operator==(const MemoryHistoryResp &) const = default;
};
BOOST_DESCRIBE_STRUCT(MemoryHistoryResp, (), (revision, memoryId, current, entries, canRevert))

} // namespace lmp
