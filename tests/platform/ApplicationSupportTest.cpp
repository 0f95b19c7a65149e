#include "platform/ApplicationSupport.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace lmp {

using namespace Qt::StringLiterals;

class ApplicationSupportTest : public ::testing::Test {
protected:
    QString at(const QString &name) const { return folder.filePath(name); }
    static mode_t modeOf(const QString &path) {
        struct stat status = {};
        return ::lstat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 07777 : 0;
    }

    QTemporaryDir folder;
};

TEST_F(ApplicationSupportTest, MakesFoldersForTheOwnerAlone) {
    const auto support = ApplicationSupport::at(at(u"deep/root"_s));
    const mode_t before = ::umask(0);
    const auto inner = support.folder(u"a/b"_s);
    ::umask(before);
    ASSERT_TRUE(inner);
    EXPECT_EQ(*inner, at(u"deep/root/a/b"_s));
    for (const QString &made : {u"deep"_s, u"deep/root"_s, u"deep/root/a"_s, u"deep/root/a/b"_s})
        EXPECT_EQ(modeOf(at(made)), 0700u) << made.toStdString();
    QFile file(at(u"deep/root/file"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(support.folder(u"file"_s), std::nullopt);
    EXPECT_EQ(support.folder(u"file/below"_s), std::nullopt);
    EXPECT_EQ(support.folder({}), at(u"deep/root"_s));
}

TEST_F(ApplicationSupportTest, ProfilesHaveFoldersOfTheirOwn) {
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
