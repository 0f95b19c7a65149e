#include "platform/FileSettings.h"
#include "platform/AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace lmp {

using namespace Qt::StringLiterals;

class FileSettingsTest : public ::testing::Test {
protected:
    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(u"settings.v1"_s);
};

TEST_F(FileSettingsTest, TwoProcessesKeepEachOthersKeys) {
    FileSettings one(m_path), other(m_path);
    EXPECT_FALSE(one.value(u"a"_s));
    ASSERT_TRUE(other.setValue(u"a"_s, "1"));
    ASSERT_TRUE(one.setValue(u"b"_s, QByteArray("\0\xff", 2)));
    EXPECT_EQ(one.value(u"a"_s), "1");
    ASSERT_TRUE(other.remove(u"a"_s));

    const FileSettings later(m_path);
    EXPECT_FALSE(later.value(u"a"_s));
    EXPECT_EQ(later.value(u"b"_s), QByteArray("\0\xff", 2));
    struct stat status = {};
    ASSERT_EQ(::stat(QFile::encodeName(m_path).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(FileSettingsTest, DamagedFilesArePutAsideEachOnItsOwn) {
    for (const QByteArray &damaged : {QByteArray("not ours"), QByteArray("LMP1\0\0", 6), QByteArray()}) {
        ASSERT_TRUE(AtomicFile::write(m_path, damaged));
        FileSettings settings(m_path);
        EXPECT_FALSE(settings.value(u"a"_s));
        EXPECT_TRUE(settings.setValue(u"a"_s, "1"));
        EXPECT_EQ(FileSettings(m_path).value(u"a"_s), "1");
    }
    EXPECT_EQ(AtomicFile::read(m_path + u".unreadable"_s), QByteArray("not ours"));
    EXPECT_EQ(AtomicFile::read(m_path + u".unreadable.2"_s), QByteArray("LMP1\0\0", 6));
    EXPECT_EQ(AtomicFile::read(m_path + u".unreadable.3"_s), QByteArray());
}

TEST_F(FileSettingsTest, WhatCannotBeReadIsNotReplaced) {
    // Longer than anything we read; sparse, so it costs nothing.
    QFile file(m_path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(70 * 1024 * 1024));
    file.close();
    FileSettings settings(m_path);
    EXPECT_FALSE(settings.value(u"a"_s));
    EXPECT_FALSE(settings.setValue(u"a"_s, "1"));
    EXPECT_FALSE(settings.remove(u"a"_s));
    EXPECT_EQ(QFile(m_path).size(), 70 * 1024 * 1024);

    FileSettings nowhere(m_folder.filePath(u"missing/settings.v1"_s));
    EXPECT_FALSE(nowhere.setValue(u"a"_s, "1"));
}

} // namespace lmp
