#pragma once

#include "identity/MemoryService.h"

namespace lmp {

/// Cuts a text that somebody brings along into the pieces that are read for memories.
///
/// Free of state; any thread.
class MemoryImport {
public:
    static constexpr qsizetype maxPieces = 60;

    /// One piece a line, blank lines and outer spaces dropped, at most `maxPieces`; a single piece gets a companion,
    /// since the service reads no message that stands alone. Empty for a text without any.
    static QList<MemoryService::ExtractMessage> messages(const QString &text);
};

} // namespace lmp
