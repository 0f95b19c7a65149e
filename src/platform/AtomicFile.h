#pragma once

#include <QByteArray>
#include <QString>

#include <expected>

namespace lmp {

/// Reads and replaces whole files so that a crash, a full disk or a pulled plug leaves the old content or the new one,
/// never a torn one.
///
/// Free of state; any thread may call it, and it blocks on the disk. Two writers of one file need a lock of their own.
class AtomicFile {
public:
    struct Error {
        QString path;
        QString step;   ///< the system call that failed, e.g. "fsync"
        int code = 0;   ///< errno
        QString reason; ///< the system's own words for `code`
        bool operator==(const Error &) const = default;
    };

    /// What a successful write promises against a pulled plug. Against a crash of the program both promise the same.
    enum class Durability {
        Flushed, ///< on the disk when the call returns
        Relaxed, ///< on the disk when the system finds the time; for settings that are written often
    };

    /// Whose files are read.
    enum class Trust {
        Anyone,   ///< whatever the path leads to
        OwnerOnly ///< no symbolic link, and nothing that somebody else owns or may write to: EPERM. A file that
                  ///< others may read is closed to them.
    };

    /// Writes `bytes` aside, flushes them to the disk, renames them into place and flushes the folder. The file is
    /// readable by its owner alone (0600) from its first moment. A symbolic link in place of the file is replaced, not
    /// followed. On failure the old file is as it was and nothing is left beside it; that holds for a folder that
    /// cannot be flushed too where the file system can swap two names.
    static std::expected<void, Error> write(const QString &path, const QByteArray &bytes,
                                            Durability durability = Durability::Flushed);

    /// The whole content. A missing file is the error with `code` ENOENT; a file over `limit` bytes is EFBIG.
    static std::expected<QByteArray, Error> read(const QString &path, qint64 limit = maxRead,
                                                 Trust trust = Trust::Anyone);

    /// Removes the file and flushes the folder; a file that is not there is no error. On failure the file is as it was.
    static std::expected<void, Error> remove(const QString &path);

    /// Gives the file a name that nobody uses, flushed: what is there is neither read nor copied, whatever it is. On
    /// failure it is where it was.
    static std::expected<void, Error> moveAside(const QString &path, const QString &aside);

    /// Flushes the names in `folder` to the disk.
    static std::expected<void, Error> flushFolder(const QString &folder);

    /// Removes what writers that were killed left beside the files of `folder`; only while nobody writes there.
    static void sweep(const QString &folder);

    static constexpr qint64 maxRead = 64 * 1024 * 1024;
};

} // namespace lmp
