#include "platform/AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// No file may grow beyond this: what a full disk is to a program, without filling one.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() { ::setrlimit(RLIMIT_FSIZE, &m_before); }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    rlimit m_before = {};
};

} // namespace

class AtomicFileTest : public ::testing::Test {
protected:
    QStringList names() const {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }
    static mode_t modeOf(const QString &path) {
        struct stat status = {};
        EXPECT_EQ(::lstat(QFile::encodeName(path).constData(), &status), 0);
        return status.st_mode;
    }

    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(u"record"_s);
};

TEST_F(AtomicFileTest, ReplacesTheWholeAndLeavesNothingBeside) {
    for (const QByteArray &content : {QByteArray("first"), QByteArray(), QByteArray(200'000, 'x')}) {
        ASSERT_TRUE(AtomicFile::write(m_path, content));
        EXPECT_EQ(AtomicFile::read(m_path), content);
        EXPECT_EQ(names(), QStringList{u"record"_s});
        EXPECT_EQ(modeOf(m_path) & 0777, 0600u);
    }
    EXPECT_EQ(AtomicFile::read(m_path, 1000).error().code, EFBIG);
    const QString longest = m_folder.filePath(QString(255, u'n'));
    EXPECT_TRUE(AtomicFile::write(longest, "x"));
    ASSERT_TRUE(AtomicFile::remove(m_path));
    ASSERT_TRUE(AtomicFile::remove(m_path));
    EXPECT_EQ(AtomicFile::read(m_path).error().code, ENOENT);
}

TEST_F(AtomicFileTest, AFailedWriteLeavesTheOldContent) {
    ASSERT_TRUE(AtomicFile::write(m_path, "old"));
    {
        const FileSizeLimit full(4096);
        const auto failed = AtomicFile::write(m_path, QByteArray(100'000, 'x'));
        ASSERT_FALSE(failed);
        EXPECT_EQ(failed.error().step, u"write"_s);
        EXPECT_EQ(failed.error().code, EFBIG);
    }
    EXPECT_EQ(AtomicFile::read(m_path), QByteArray("old"));
    EXPECT_EQ(names(), QStringList{u"record"_s});

    EXPECT_EQ(AtomicFile::write(m_folder.filePath(u"no/such/file"_s), "x").error().code, ENOENT);
    ASSERT_TRUE(QDir(m_folder.path()).mkpath(u"folder/inner"_s));
    EXPECT_FALSE(AtomicFile::write(m_folder.filePath(u"folder"_s), "x"));
    EXPECT_EQ(AtomicFile::read(m_folder.filePath(u"folder"_s)).error().code, EISDIR);
    EXPECT_EQ(names(), (QStringList{u"folder"_s, u"record"_s}));
}

TEST_F(AtomicFileTest, ReplacesALinkRatherThanWhatItPointsTo) {
    const QString target = m_folder.filePath(u"target"_s);
    ASSERT_TRUE(AtomicFile::write(target, "untouched"));
    ASSERT_TRUE(QFile::link(target, m_path));
    ASSERT_TRUE(AtomicFile::write(m_path, "mine"));
    EXPECT_TRUE(S_ISREG(modeOf(m_path)));
    EXPECT_EQ(AtomicFile::read(target), QByteArray("untouched"));
}

} // namespace lmp
