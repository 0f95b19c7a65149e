#include "platform/FileLock.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// An interruption that never ends is a failure.
constexpr int maxInterruptions = 100;

std::unexpected<AtomicFile::Error> failed(const QString &path, const QString &step, int code) {
    return std::unexpected(AtomicFile::Error{path, step, code, QString::fromLocal8Bit(std::strerror(code))});
}

} // namespace

std::expected<FileLock, AtomicFile::Error> FileLock::hold(const QString &path, std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    if (limit.count() <= 0)
        return take(path, deadline);
    // Only one waits at the lock itself. A holder that comes back in a moment would else win against all who look at
    // it now and then, on a busy machine for seconds.
    const auto turn = take(path + u".turn"_s, deadline);
    return turn ? take(path, deadline) : std::unexpected(turn.error());
}

std::expected<FileLock, AtomicFile::Error> FileLock::take(const QString &path, Deadline deadline) {
    int fd = -1, interruptions = 0;
    do
        fd = ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    while (fd < 0 && errno == EINTR && ++interruptions < maxInterruptions);
    if (fd < 0)
        return failed(path, u"open"_s, errno);
    FileLock lock(fd);
    // The system's own lock belongs to the open file, so two threads exclude each other as two processes do.
    while (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        if (errno == EINTR && ++interruptions < maxInterruptions)
            continue;
        if (errno != EWOULDBLOCK)
            return failed(path, u"flock"_s, errno);
        if (std::chrono::steady_clock::now() >= deadline)
            return failed(path, u"flock"_s, EWOULDBLOCK);
        // Short, since whoever lets go may be back at once, and nobody stands in a queue.
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
    return lock;
}

FileLock::~FileLock() {
    if (m_fd >= 0)
        ::close(m_fd);
}

} // namespace lmp
