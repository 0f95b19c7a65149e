#pragma once

#include <QString>

namespace lmp {

/// The kinds of tools an agent has, whatever it calls them.
///
/// Free of state; any thread.
class DevTools {
public:
    enum class Kind { list_files, read_file, grep, glob, edit_file, write_file, bash };

    /// An unknown tool is judged as one that writes files.
    static Kind kindOf(const QString &tool);
    /// "read_file" and the like.
    static QString name(Kind kind);

    /// Reads, and nothing else.
    static bool isRead(Kind kind) { return kind < Kind::edit_file; }
    /// Changes files, and runs nothing.
    static bool isEdit(Kind kind) { return kind == Kind::edit_file || kind == Kind::write_file; }
};

} // namespace lmp
