#pragma once

#include <QList>
#include <QString>

#include <expected>

namespace lmp {

/// Cuts a text into the pieces that are spoken one after another: at the end of a sentence or a line, and before a
/// piece grows longer than the speech route takes.
///
/// Free of state; any thread. Together the pieces are the text, unchanged.
class TTSTextChunker {
public:
    enum class ChunkError {
        oversizedGrapheme, ///< one character alone is longer than a piece may be
    };
    static constexpr qsizetype maxUnits = 500; ///< UTF-16 code units of a piece

    static std::expected<QList<QString>, ChunkError> chunks(const QString &text);
    /// The sentence shown.
    static QString describe(ChunkError error);
};

} // namespace lmp
