#include "platform/AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace lmp {

using namespace Qt::StringLiterals;
using Durability = AtomicFile::Durability;

class AtomicFileTest : public ::testing::Test {
protected:
    QString at(const QString &name) const { return folder.filePath(name); }
    QStringList entries() const {
        return QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }
    static mode_t modeOf(const QString &path) {
        struct stat status = {};
        return ::lstat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 07777 : 0;
    }
    void put(const QString &name, const QByteArray &bytes) {
        QFile file(at(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QTemporaryDir folder;
};

TEST_F(AtomicFileTest, ReplacesWholeFiles) {
    for (const auto durability : {Durability::Flushed, Durability::Relaxed}) {
        const QString path = at(u"字%1"_s.arg(int(durability)));
        for (const QByteArray &bytes : {QByteArray("first"), QByteArray(), QByteArray(3'000'000, '\0')}) {
            const mode_t before = ::umask(0);
            const auto written = AtomicFile::write(path, bytes, durability);
            ::umask(before);
            ASSERT_TRUE(written) << written.error().step.toStdString();
            EXPECT_EQ(AtomicFile::read(path), bytes);
            EXPECT_EQ(modeOf(path), 0600u);
        }
        EXPECT_TRUE(AtomicFile::remove(path));
        EXPECT_TRUE(AtomicFile::remove(path)) << "what is not there is removed";
    }
    EXPECT_EQ(entries(), QStringList()) << "nothing is left beside";
}

TEST_F(AtomicFileTest, ClosesAFileThatStoodOpenToAll) {
    put(u"f"_s, "old");
    QFile::setPermissions(at(u"f"_s), QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
    ASSERT_TRUE(AtomicFile::write(at(u"f"_s), "new"));
    EXPECT_EQ(modeOf(at(u"f"_s)), 0600u);
}

TEST_F(AtomicFileTest, ReplacesALinkAndSparesItsTarget) {
    put(u"target"_s, "theirs");
    ASSERT_TRUE(QFile::link(at(u"target"_s), at(u"link"_s)));
    ASSERT_TRUE(AtomicFile::write(at(u"link"_s), "ours"));
    EXPECT_EQ(AtomicFile::read(at(u"target"_s)), "theirs"_ba);
    EXPECT_FALSE(QFileInfo(at(u"link"_s)).isSymLink());
}

TEST_F(AtomicFileTest, NamesWhatFailed) {
    put(u"file"_s, "x");
    put(u"five"_s, "12345");
    ASSERT_TRUE(QDir(folder.path()).mkdir(u"dir"_s));
    ASSERT_EQ(::mkfifo(QFile::encodeName(at(u"pipe"_s)).constData(), 0600), 0);
    struct Case {
        std::expected<void, AtomicFile::Error> outcome;
        int code;
    };
    const auto outcome =
        [](const std::expected<QByteArray, AtomicFile::Error> &read) -> std::expected<void, AtomicFile::Error> {
        if (read)
            return {};
        return std::unexpected(read.error());
    };
    const QString longest(255, u'n');
    int number = 0;
    for (const auto &[result, code] : std::initializer_list<Case>{
             {AtomicFile::write(at(u"none/f"_s), "x"), ENOENT},
             {AtomicFile::write(at(u"file/f"_s), "x"), ENOTDIR},
             {AtomicFile::write(at(u"dir"_s), "x"), EISDIR},
             {AtomicFile::write(at(longest), "x"), 0},
             {AtomicFile::write(at(longest + u'n'), "x"), ENAMETOOLONG},
             {outcome(AtomicFile::read(at(u"none"_s))), ENOENT},
             {outcome(AtomicFile::read(at(u"dir"_s))), EISDIR},
             {outcome(AtomicFile::read(at(u"pipe"_s))), EINVAL},
             {outcome(AtomicFile::read(at(u"five"_s), 5)), 0},
             {outcome(AtomicFile::read(at(u"five"_s), 4)), EFBIG},
             {AtomicFile::remove(at(u"dir"_s)), EISDIR},
         }) {
        EXPECT_EQ(result ? 0 : result.error().code, code) << "case " << number;
        if (!result) {
            EXPECT_FALSE(result.error().step.isEmpty() || result.error().reason.isEmpty()) << "case " << number;
        }
        ++number;
    }
    for (const QString &entry : entries())
        EXPECT_FALSE(entry.endsWith(u".tmp"_s)) << entry.toStdString();
}

TEST_F(AtomicFileTest, ReadOnlyFolderKeepsTheOldFile) {
    put(u"f"_s, "old");
    ASSERT_EQ(::chmod(QFile::encodeName(folder.path()).constData(), 0555), 0);
    // Root may write anywhere, so it becomes somebody else for a moment.
    const bool root = ::geteuid() == 0;
    ASSERT_TRUE(!root || ::seteuid(65534) == 0);
    const auto written = AtomicFile::write(at(u"f"_s), "new");
    ASSERT_TRUE(!root || ::seteuid(0) == 0);
    ::chmod(QFile::encodeName(folder.path()).constData(), 0700);
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().code, EACCES);
    EXPECT_EQ(AtomicFile::read(at(u"f"_s)), "old"_ba);
}

TEST_F(AtomicFileTest, NoRoomKeepsTheOldFile) {
    // A limit on the size of files stops a write in the middle, as a full disk does.
    const auto limited = [](rlim_t bytes) {
        struct rlimit limit = {};
        ::getrlimit(RLIMIT_FSIZE, &limit);
        const rlim_t before = std::exchange(limit.rlim_cur, bytes);
        ::setrlimit(RLIMIT_FSIZE, &limit);
        return before;
    };
    ASSERT_TRUE(AtomicFile::write(at(u"f"_s), "old"));
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlim_t before = limited(4096);
    const auto written = AtomicFile::write(at(u"f"_s), QByteArray(10'000, 'n'));
    limited(before);
    std::signal(SIGXFSZ, handler);
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().code, EFBIG);
    EXPECT_EQ(written.error().step, u"write"_s);
    EXPECT_EQ(AtomicFile::read(at(u"f"_s)), "old"_ba);
    EXPECT_EQ(entries(), QStringList{u"f"_s});
}

TEST_F(AtomicFileTest, FullDiskKeepsTheOldFile) {
    const QString disk = at(u"disk"_s);
    ASSERT_TRUE(QDir(folder.path()).mkdir(u"disk"_s));
    const int mounted =
        QProcess::execute(u"sh"_s, {u"-c"_s, u"mount -t tmpfs -o size=64k tmpfs \"$0\" 2>/dev/null"_s, disk});
    if (mounted != 0)
        GTEST_SKIP() << "no small disk could be mounted here";
    const QString path = disk + u"/f"_s;
    const auto small = AtomicFile::write(path, "old");
    const auto large = AtomicFile::write(path, QByteArray(200'000, 'n'));
    const auto kept = AtomicFile::read(path);
    const QStringList left = QDir(disk).entryList(QDir::Files | QDir::Hidden);
    QProcess::execute(u"umount"_s, {disk});
    ASSERT_TRUE(small);
    ASSERT_FALSE(large);
    EXPECT_EQ(large.error().code, ENOSPC);
    EXPECT_EQ(kept, "old"_ba);
    EXPECT_EQ(left, QStringList{u"f"_s});
}

} // namespace lmp
