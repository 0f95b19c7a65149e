#include "platform/AtomicFile.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

AtomicFile::Error failure(const QString &path, QLatin1StringView step, int code) {
    return {path, step, code, QString::fromLocal8Bit(std::strerror(code))};
}

/// A descriptor that is closed on every way out; `close` reports what the system says, which may be a late ENOSPC.
class Descriptor {
public:
    explicit Descriptor(int fd)
        : m_fd(fd) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    operator int() const { return m_fd; }
    bool close() {
        const int fd = std::exchange(m_fd, -1);
        // EINTR leaves the descriptor closed on Linux and in an unknown state elsewhere; closing again is never right.
        return fd < 0 || ::close(fd) == 0 || errno == EINTR;
    }

private:
    int m_fd;
};

int openRetrying(const QByteArray &path, int flags, mode_t mode = 0) {
    int fd = -1;
    do {
        fd = ::open(path.constData(), flags | O_CLOEXEC, mode);
    } while (fd < 0 && errno == EINTR);
    return fd;
}

bool writeAll(int fd, const QByteArray &bytes) {
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.constData() + done, size_t(bytes.size() - done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return false;
        done += n;
    }
    return true;
}

/// fsync() of macOS stops at the drive's cache; F_FULLFSYNC goes through it.
bool flush(int fd) {
#ifdef F_FULLFSYNC
    if (::fcntl(fd, F_FULLFSYNC) == 0)
        return true;
#endif
    int rc = -1;
    do {
        rc = ::fsync(fd);
    } while (rc != 0 && errno == EINTR);
    return rc == 0;
}

std::expected<void, AtomicFile::Error> flushFolder(const QString &path) {
    const QByteArray folder = QFile::encodeName(QFileInfo(path).path());
    const Descriptor fd(openRetrying(folder, O_RDONLY | O_DIRECTORY));
    if (fd < 0)
        return std::unexpected(failure(path, "open folder"_L1, errno));
    // Some file systems cannot flush a folder and say so with EINVAL: they order the rename themselves.
    if (!flush(fd) && errno != EINVAL)
        return std::unexpected(failure(path, "fsync folder"_L1, errno));
    return {};
}

std::expected<void, AtomicFile::Error> writeAside(const QString &path, const QByteArray &aside, const QByteArray &bytes,
                                                  AtomicFile::Durability durability) {
    Descriptor fd(openRetrying(aside, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, S_IRUSR | S_IWUSR));
    if (fd < 0)
        return std::unexpected(failure(path, "open"_L1, errno));
    if (!writeAll(fd, bytes))
        return std::unexpected(failure(path, "write"_L1, errno));
    if (durability == AtomicFile::Durability::Flushed && !flush(fd))
        return std::unexpected(failure(path, "fsync"_L1, errno));
    if (!fd.close())
        return std::unexpected(failure(path, "close"_L1, errno));
    return {};
}

} // namespace

std::expected<void, AtomicFile::Error> AtomicFile::write(const QString &path, const QByteArray &bytes,
                                                         Durability durability) {
    // The name beside the file is its digest's, not its own with a suffix, so that a long name stays within the limit.
    const QFileInfo info(path);
    const auto digest =
        QCryptographicHash::hash(info.fileName().toUtf8(), QCryptographicHash::Sha256).toHex().first(16);
    const QByteArray aside = QFile::encodeName(info.path()) + "/." + digest + '.' +
                             QByteArray::number(QRandomGenerator::system()->generate64(), 36) + ".tmp";
    if (auto written = writeAside(path, aside, bytes, durability); !written) {
        ::unlink(aside.constData());
        return written;
    }
    if (::rename(aside.constData(), QFile::encodeName(path).constData()) != 0) {
        const int code = errno;
        ::unlink(aside.constData());
        return std::unexpected(failure(path, "rename"_L1, code));
    }
    if (durability == Durability::Relaxed)
        return {};
    return flushFolder(path);
}

std::expected<QByteArray, AtomicFile::Error> AtomicFile::read(const QString &path, qint64 limit) {
    const Descriptor fd(openRetrying(QFile::encodeName(path), O_RDONLY | O_NONBLOCK));
    if (fd < 0)
        return std::unexpected(failure(path, "open"_L1, errno));
    struct stat status = {};
    if (::fstat(fd, &status) != 0)
        return std::unexpected(failure(path, "fstat"_L1, errno));
    if (!S_ISREG(status.st_mode))
        return std::unexpected(failure(path, "open"_L1, S_ISDIR(status.st_mode) ? EISDIR : EINVAL));
    QByteArray bytes;
    bytes.reserve(qsizetype(std::min<qint64>(status.st_size, limit)));
    char piece[65536];
    for (;;) {
        const ssize_t n = ::read(fd, piece, sizeof piece);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return std::unexpected(failure(path, "read"_L1, errno));
        if (n == 0)
            return bytes;
        if (bytes.size() + n > limit)
            return std::unexpected(failure(path, "read"_L1, EFBIG));
        bytes.append(piece, n);
    }
}

std::expected<void, AtomicFile::Error> AtomicFile::remove(const QString &path) {
    if (::unlink(QFile::encodeName(path).constData()) != 0) {
        if (errno == ENOENT)
            return {};
        return std::unexpected(failure(path, "unlink"_L1, errno));
    }
    return flushFolder(path);
}

} // namespace lmp
