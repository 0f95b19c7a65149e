#pragma once

#include "core/PoolAwaiter.h"
#include "platform/FileThread.h"

namespace lmp {

/// To be awaited: everything that was given to the file thread before is done. Resumes on the thread that waits.
inline auto filesSettled() {
    return PoolAwaiter([] { return true; }, &FileThread::pool());
}

} // namespace lmp
