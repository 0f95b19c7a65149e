#pragma once

#include "identity/MemoryService.h"

namespace lmp {

/// Brings memories in from a text: it is cut into pieces, the pieces are read for candidates, and those that the person
/// picks are confirmed.
///
/// Free of state; any thread.
class MemoryImport {
public:
    /// Where the text comes from.
    enum class Source {
        chatFile, ///< a chat that another program has written out
        manual,   ///< what somebody writes down for this
    };
    /// How far an import has come: what is read, what was found in it, what is to be written, what has been.
    enum class Step { source, review, confirm, done };

    static constexpr qsizetype maxPieces = 60;

    /// One piece a line, blank lines and outer spaces dropped, at most `maxPieces`; a single piece gets a companion,
    /// since the service reads no message that stands alone. Empty for a text without any.
    static QList<MemoryService::ExtractMessage> messages(const QString &text);
    /// What stands behind the pieces that `messages` takes.
    static QString rest(const QString &text);
    /// How many pieces the text has, read or not.
    static qsizetype countPieces(const QString &text);
};

} // namespace lmp
