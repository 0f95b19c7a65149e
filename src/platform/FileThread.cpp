#include "platform/FileThread.h"

namespace lmp {

namespace {

/// Its end waits for what is under way, for programs that never say that they end.
class OneThread : public QThreadPool {
public:
    OneThread() {
        setMaxThreadCount(1);
        setExpiryTimeout(FileThread::idle);
    }
};

} // namespace

QThreadPool &FileThread::pool() {
    static OneThread pool;
    return pool;
}

void FileThread::finish() {
    pool().waitForDone();
}

} // namespace lmp
