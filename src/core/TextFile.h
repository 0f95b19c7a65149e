#pragma once

#include <QString>

#include <expected>

namespace lmp {

/// Reads a text that somebody brings along in a file: UTF-8, or what its byte order mark says.
///
/// Free of state; any thread, and it blocks on the disk, though never on a pipe or a device: those are refused. Fails
/// with the sentence shown.
class TextFile {
public:
    /// A file beyond this is no text that somebody would bring along.
    static constexpr qint64 maxBytes = 20'000'000;

    static std::expected<QString, QString> read(const QString &path);
};

} // namespace lmp
