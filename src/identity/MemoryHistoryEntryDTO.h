#pragma once

#include <QString>

#include <boost/describe.hpp>

namespace lmp {

/// One step between two wordings of a memory.
struct MemoryHistoryEntryDTO {
    QString id;
    QString memoryId;
    QString previous;
    QString next;
    QString source;
    QString at;
    bool operator==(const MemoryHistoryEntryDTO &) const = default;
};
BOOST_DESCRIBE_STRUCT(MemoryHistoryEntryDTO, (), (id, memoryId, previous, next, source, at))

} // namespace lmp
