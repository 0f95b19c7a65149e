#include "platform/AtomicFile.h"

#include <QCryptographicHash>
#include <QDir>
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

/// A call is made again after this many interruptions at most: an interruption that never ends is a failure.
constexpr int maxInterruptions = 100;

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

/// What `call` returns once it is not interrupted.
template <class Call>
auto persist(Call call) {
    auto result = call();
    for (int again = 0; result < 0 && errno == EINTR && again < maxInterruptions; ++again)
        result = call();
    return result;
}

int openFile(const QByteArray &path, int flags, mode_t mode = 0) {
    return persist([&] { return ::open(path.constData(), flags | O_CLOEXEC, mode); });
}

bool writeAll(int fd, const QByteArray &bytes) {
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t n = persist([&] { return ::write(fd, bytes.constData() + done, size_t(bytes.size() - done)); });
        if (n == 0)
            errno = EIO; // a disk that takes nothing and does not say why
        if (n <= 0)
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
    return persist([&] { return ::fsync(fd); }) == 0;
}

/// A name beside `path` that nobody uses: the file's digest, not its own name with a suffix, so that a long name stays
/// within the limit.
QByteArray nameBeside(const QString &path) {
    const QFileInfo info(path);
    const auto digest =
        QCryptographicHash::hash(info.fileName().toUtf8(), QCryptographicHash::Sha256).toHex().first(16);
    return QFile::encodeName(info.path()) + "/." + digest + '.' +
           QByteArray::number(QRandomGenerator::system()->generate64(), 36) + ".tmp";
}

/// How a file came into its place, and so how it leaves it again.
enum class Placed { Failed, Fresh, Swapped, Replaced };

bool swapNames(const QByteArray &one, const QByteArray &other) {
#if defined(RENAME_EXCHANGE)
    return ::renameat2(AT_FDCWD, one.constData(), AT_FDCWD, other.constData(), RENAME_EXCHANGE) == 0;
#elif defined(RENAME_SWAP)
    return ::renamex_np(one.constData(), other.constData(), RENAME_SWAP) == 0;
#else
    return false;
#endif
}

/// Swaps the two where that can be done, so that the old file is at hand until the folder is flushed.
Placed put(const QByteArray &aside, const QByteArray &place, bool keepOld) {
    struct stat status = {};
    const bool there = ::lstat(place.constData(), &status) == 0;
    if (keepOld && there && !S_ISDIR(status.st_mode) && swapNames(aside, place))
        return Placed::Swapped;
    if (::rename(aside.constData(), place.constData()) != 0)
        return Placed::Failed;
    return there ? Placed::Replaced : Placed::Fresh;
}

/// Renames without taking the place of anything.
bool renameFresh(const QByteArray &from, const QByteArray &to) {
#if defined(RENAME_NOREPLACE)
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return true;
#elif defined(RENAME_EXCL)
    if (::renamex_np(from.constData(), to.constData(), RENAME_EXCL) == 0)
        return true;
#else
    errno = ENOSYS;
#endif
    // Some file systems do not know how.
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    struct stat status = {};
    if (::lstat(to.constData(), &status) == 0) {
        errno = EEXIST;
        return false;
    }
    return ::rename(from.constData(), to.constData()) == 0;
}

std::expected<void, AtomicFile::Error> writeAside(const QString &path, const QByteArray &aside, const QByteArray &bytes,
                                                  AtomicFile::Durability durability) {
    Descriptor fd(openFile(aside, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, S_IRUSR | S_IWUSR));
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
    const QByteArray aside = nameBeside(path), place = QFile::encodeName(path);
    if (auto written = writeAside(path, aside, bytes, durability); !written) {
        ::unlink(aside.constData());
        return written;
    }
    const Placed placed = put(aside, place, durability == Durability::Flushed);
    if (placed == Placed::Failed) {
        const int code = errno;
        ::unlink(aside.constData());
        return std::unexpected(failure(path, "rename"_L1, code));
    }
    if (durability == Durability::Relaxed)
        return {};
    auto flushed = flushFolder(QFileInfo(path).path());
    if (placed == Placed::Swapped)
        flushed ? ::unlink(aside.constData()) : ::rename(aside.constData(), place.constData());
    else if (!flushed && placed == Placed::Fresh)
        ::unlink(place.constData());
    return flushed;
}

std::expected<QByteArray, AtomicFile::Error> AtomicFile::read(const QString &path, qint64 limit, Trust trust) {
    const int follow = trust == Trust::OwnerOnly ? O_NOFOLLOW : 0;
    const Descriptor fd(openFile(QFile::encodeName(path), O_RDONLY | O_NONBLOCK | follow));
    if (fd < 0)
        return std::unexpected(failure(path, "open"_L1, errno));
    struct stat status = {};
    if (::fstat(fd, &status) != 0)
        return std::unexpected(failure(path, "fstat"_L1, errno));
    if (!S_ISREG(status.st_mode))
        return std::unexpected(failure(path, "open"_L1, S_ISDIR(status.st_mode) ? EISDIR : EINVAL));
    if (trust == Trust::OwnerOnly && (status.st_uid != ::geteuid() || (status.st_mode & (S_IWGRP | S_IWOTH))))
        return std::unexpected(failure(path, "open"_L1, EPERM));
    if (trust == Trust::OwnerOnly && (status.st_mode & (S_IRWXG | S_IRWXO)))
        (void)::fchmod(fd, S_IRUSR | S_IWUSR);
    QByteArray bytes;
    bytes.reserve(qsizetype(std::min<qint64>(status.st_size, limit)));
    char piece[65536];
    for (;;) {
        const ssize_t n = persist([&] { return ::read(fd, piece, sizeof piece); });
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
    // Renamed first: a folder that cannot be flushed gives the file back.
    const QByteArray aside = nameBeside(path), place = QFile::encodeName(path);
    struct stat status = {};
    if (::lstat(place.constData(), &status) == 0 && S_ISDIR(status.st_mode))
        return std::unexpected(failure(path, "unlink"_L1, EISDIR));
    if (::rename(place.constData(), aside.constData()) != 0) {
        if (errno == ENOENT)
            return {};
        return std::unexpected(failure(path, "rename"_L1, errno));
    }
    auto flushed = flushFolder(QFileInfo(path).path());
    if (!flushed)
        ::rename(aside.constData(), place.constData());
    else
        ::unlink(aside.constData());
    return flushed;
}

std::expected<void, AtomicFile::Error> AtomicFile::moveAside(const QString &path, const QString &aside) {
    const QByteArray place = QFile::encodeName(path), beside = QFile::encodeName(aside);
    if (!renameFresh(place, beside))
        return std::unexpected(failure(path, "rename"_L1, errno));
    auto flushed = flushFolder(QFileInfo(path).path());
    if (!flushed)
        (void)renameFresh(beside, place);
    return flushed;
}

std::expected<void, AtomicFile::Error> AtomicFile::flushFolder(const QString &folder) {
    const Descriptor fd(openFile(QFile::encodeName(folder), O_RDONLY | O_DIRECTORY));
    if (fd < 0)
        return std::unexpected(failure(folder, "open folder"_L1, errno));
    // Some file systems cannot flush a folder and say so with EINVAL: they order the rename themselves.
    if (!flush(fd) && errno != EINVAL)
        return std::unexpected(failure(folder, "fsync folder"_L1, errno));
    return {};
}

void AtomicFile::sweep(const QString &folder) {
    const QDir dir(folder);
    for (const QString &name : dir.entryList({u".*.tmp"_s}, QDir::Files | QDir::Hidden | QDir::System))
        ::unlink(QFile::encodeName(dir.filePath(name)).constData());
}

} // namespace lmp
