#pragma once

#include "platform/FileThread.h"

namespace lmp {

/// Stands behind the folder of a test: what is written when the others go is written before the folder goes.
struct FileThreadEnd {
    FileThreadEnd() = default;
    FileThreadEnd(const FileThreadEnd &) = delete;
    FileThreadEnd &operator=(const FileThreadEnd &) = delete;
    ~FileThreadEnd() { FileThread::finish(); }
};

} // namespace lmp
