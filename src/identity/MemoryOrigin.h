#pragma once

#include "identity/MemoryHistoryResp.h"
#include "identity/MemoryItemDTO.h"

namespace lmp {

/// One link of the chain that says where a memory comes from. A value.
struct MemoryOrigin {
    QString id; ///< a UUID, of this machine alone
    QString at; ///< as the service writes times; may be empty
    QString text;
    bool operator==(const MemoryOrigin &) const = default;

    /// From the first mention to the last change: where it came from, what it replaced, and each change of its wording.
    static QList<MemoryOrigin> chain(const MemoryItemDTO &item, const MemoryHistoryResp &history);
};
BOOST_DESCRIBE_STRUCT(MemoryOrigin, (), (id, at, text))

} // namespace lmp
