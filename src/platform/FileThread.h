#pragma once

#include <QThreadPool>

namespace lmp {

/// The thread on which what people type is written and read, so that no window ever waits for the disk.
///
/// One for the program. Things are done in the order in which they were given, across all windows: whoever reads after
/// a window was closed reads what that window wrote last. Work goes on when whoever gave it is gone, and must own what
/// it touches; the program waits for it with `finish` before it ends.
class FileThread {
public:
    static QThreadPool &pool();
    /// Waits until everything that was given is done.
    static void finish();
};

} // namespace lmp
