#include "platform/FileThread.h"

#include "platform/OneThread.h"

namespace lmp {

QThreadPool &FileThread::pool() {
    // A program that never says that it ends still waits for what is under way.
    static OneThread pool;
    return pool;
}

void FileThread::finish() {
    pool().waitForDone();
}

} // namespace lmp
