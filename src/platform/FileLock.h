#pragma once

#include "platform/AtomicFile.h"

#include <chrono>
#include <expected>
#include <utility>

namespace lmp {

/// A lock that one holder has at a time, among threads and processes alike; let go of when this is destroyed, and by
/// the system when the process dies.
///
/// Held by the scope that takes it; blocks; any thread. Who lets go and comes back at once gets behind those who wait.
/// The file it is taken on stays behind, empty and private, and so does the one beside it that they wait at (".turn").
class FileLock {
public:
    /// @param path of the lock's own file; never the file that it guards, since that one is replaced
    /// @param limit how long to wait for another holder
    /// @return the lock, or what failed: the code is EWOULDBLOCK when another holder kept it
    static std::expected<FileLock, AtomicFile::Error> hold(const QString &path, std::chrono::milliseconds limit);

    FileLock(FileLock &&other) noexcept
        : m_fd(std::exchange(other.m_fd, -1)) {}
    FileLock &operator=(FileLock &&) = delete;
    ~FileLock();

private:
    using Deadline = std::chrono::steady_clock::time_point;

    static std::expected<FileLock, AtomicFile::Error> take(const QString &path, Deadline deadline);

    explicit FileLock(int fd)
        : m_fd(fd) {}

    int m_fd;
};

} // namespace lmp
