#include "dev/DevPool.h"

#include <QThreadPool>

namespace lmp {

namespace {

QThreadPool *pool(int threads) {
    auto *const made = new QThreadPool;
    made->setMaxThreadCount(threads);
    return made;
}

} // namespace

QThreadPool &DevPool::waiting() {
    static auto *const threads = pool(32);
    return *threads;
}

QThreadPool &DevPool::ending() {
    static auto *const threads = pool(1);
    return *threads;
}

} // namespace lmp
