#include "platform/ApplicationSupport.h"
#include "platform/AtomicFile.h"
#include "platform/FileSettings.h"

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

class FilesTest : public ::testing::Test {
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

TEST_F(FilesTest, ReplacesWholeFiles) {
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

TEST_F(FilesTest, ClosesAFileThatStoodOpenToAll) {
    put(u"f"_s, "old");
    QFile::setPermissions(at(u"f"_s), QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
    ASSERT_TRUE(AtomicFile::write(at(u"f"_s), "new"));
    EXPECT_EQ(modeOf(at(u"f"_s)), 0600u);
}

TEST_F(FilesTest, ReplacesALinkAndSparesItsTarget) {
    put(u"target"_s, "theirs");
    ASSERT_TRUE(QFile::link(at(u"target"_s), at(u"link"_s)));
    ASSERT_TRUE(AtomicFile::write(at(u"link"_s), "ours"));
    EXPECT_EQ(AtomicFile::read(at(u"target"_s)), "theirs"_ba);
    EXPECT_FALSE(QFileInfo(at(u"link"_s)).isSymLink());
}

TEST_F(FilesTest, NamesWhatFailed) {
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

TEST_F(FilesTest, ReadOnlyFolderKeepsTheOldFile) {
    put(u"f"_s, "old");
    ASSERT_EQ(::chmod(QFile::encodeName(folder.path()).constData(), 0555), 0);
    // Root may write anywhere, so it becomes somebody else for a moment.
    const bool root = ::geteuid() == 0;
    ASSERT_TRUE(!root || ::seteuid(65534) == 0);
    const auto written = AtomicFile::write(at(u"f"_s), "new");
    const bool kept = FileSettings(at(u"s"_s)).setValue(u"k"_s, "v");
    ASSERT_TRUE(!root || ::seteuid(0) == 0);
    ::chmod(QFile::encodeName(folder.path()).constData(), 0700);
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().code, EACCES);
    EXPECT_FALSE(kept);
    EXPECT_EQ(AtomicFile::read(at(u"f"_s)), "old"_ba);
}

TEST_F(FilesTest, NoRoomKeepsTheOldFile) {
    // A limit on the size of files stops a write in the middle, as a full disk does.
    const auto limited = [](rlim_t bytes) {
        struct rlimit limit = {};
        ::getrlimit(RLIMIT_FSIZE, &limit);
        const rlim_t before = std::exchange(limit.rlim_cur, bytes);
        ::setrlimit(RLIMIT_FSIZE, &limit);
        return before;
    };
    ASSERT_TRUE(AtomicFile::write(at(u"f"_s), "old"));
    FileSettings settings(at(u"s"_s));
    ASSERT_TRUE(settings.setValue(u"k"_s, "v"));
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlim_t before = limited(4096);
    const auto written = AtomicFile::write(at(u"f"_s), QByteArray(10'000, 'n'));
    const bool set = settings.setValue(u"k"_s, QByteArray(10'000, 'n'));
    limited(before);
    std::signal(SIGXFSZ, handler);
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().code, EFBIG);
    EXPECT_EQ(written.error().step, u"write"_s);
    EXPECT_EQ(AtomicFile::read(at(u"f"_s)), "old"_ba);
    EXPECT_FALSE(set);
    EXPECT_EQ(settings.value(u"k"_s), "v"_ba);
    EXPECT_EQ(entries(), (QStringList{u"f"_s, u"s"_s}));
}

TEST_F(FilesTest, FullDiskKeepsTheOldFile) {
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

TEST_F(FilesTest, SettingsKeepEachOthersKeys) {
    FileSettings one(at(u"s"_s));
    FileSettings two(at(u"s"_s));
    EXPECT_EQ(one.value(u"a"_s), std::nullopt);
    EXPECT_EQ(two.value(u"a"_s), std::nullopt);
    const QByteArray bytes("\0\xff\n", 3);
    EXPECT_TRUE(one.setValue(u"a"_s, bytes));
    EXPECT_TRUE(two.setValue(u"b"_s, ""));
    EXPECT_TRUE(one.setValue(u"c"_s, "3"));
    EXPECT_TRUE(two.remove(u"c"_s));
    EXPECT_TRUE(two.remove(u"never"_s));
    FileSettings third(at(u"s"_s));
    EXPECT_EQ(third.value(u"a"_s), bytes);
    EXPECT_EQ(third.value(u"b"_s), QByteArray(""));
    EXPECT_EQ(third.value(u"c"_s), std::nullopt);
    EXPECT_EQ(modeOf(at(u"s"_s)), 0600u);
}

TEST_F(FilesTest, DamagedSettingsArePutAside) {
    ASSERT_TRUE(FileSettings(at(u"good"_s)).setValue(u"k"_s, QByteArray(200, 'v')));
    const QByteArray good = *AtomicFile::read(at(u"good"_s));
    for (const QByteArray &damaged :
         {QByteArray(), QByteArray("LMP"), QByteArray("[General]\nk=v\n"), good.chopped(1), good.first(5)}) {
        put(u"s"_s, damaged);
        FileSettings settings(at(u"s"_s));
        EXPECT_EQ(settings.value(u"k"_s), std::nullopt);
        EXPECT_TRUE(settings.setValue(u"k"_s, "new"));
        EXPECT_EQ(FileSettings(at(u"s"_s)).value(u"k"_s), "new"_ba);
        EXPECT_EQ(AtomicFile::read(at(u"s.unreadable"_s)), damaged) << "kept for whoever wants to look";
        QFile::remove(at(u"s.unreadable"_s));
    }
}

TEST_F(FilesTest, SupportFolders) {
    const auto support = ApplicationSupport::at(at(u"deep/root"_s));
    const mode_t before = ::umask(0);
    const auto inner = support.folder(u"a/b"_s);
    ::umask(before);
    ASSERT_TRUE(inner);
    EXPECT_EQ(*inner, at(u"deep/root/a/b"_s));
    for (const QString &made : {u"deep"_s, u"deep/root"_s, u"deep/root/a"_s, u"deep/root/a/b"_s})
        EXPECT_EQ(modeOf(at(made)), 0700u) << made.toStdString();
    put(u"deep/root/file"_s, "x");
    EXPECT_EQ(support.folder(u"file"_s), std::nullopt);
    EXPECT_EQ(support.folder(u"file/below"_s), std::nullopt);
    EXPECT_EQ(support.folder({}), at(u"deep/root"_s));
}

TEST_F(FilesTest, ProfilesHaveFoldersOfTheirOwn) {
    qputenv("XDG_DATA_HOME", QFile::encodeName(folder.path()));
    EXPECT_TRUE(ApplicationSupport().root().endsWith(u"/Lumenpair"_s));
    EXPECT_TRUE(ApplicationSupport(u"work"_s).root().endsWith(u"/Lumenpair/Profiles/work"_s));
    qunsetenv("XDG_DATA_HOME");
    struct Case {
        QString name;
        bool good;
    };
    for (const auto &[name, good] : std::initializer_list<Case>{{u"work-2_B"_s, true},
                                                                {QString(64, u'a'), true},
                                                                {QString(65, u'a'), false},
                                                                {u""_s, false},
                                                                {u".."_s, false},
                                                                {u"a/b"_s, false},
                                                                {u"a b"_s, false},
                                                                {u"工作"_s, false},
                                                                {QString(u"a\0"_s), false}})
        EXPECT_EQ(ApplicationSupport::isProfileName(name), good) << name.toStdString();
}

} // namespace lmp
