#pragma once

#include <QFile>

#include <unistd.h>

namespace lmp::bench {

/// The memory that this process uses now.
inline long residentKB() {
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return 0;
    return statm.readAll().split(' ').value(1).toLong() * ::sysconf(_SC_PAGESIZE) / 1024;
}

} // namespace lmp::bench
