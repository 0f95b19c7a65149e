#include "platform/SystemOpener.h"

#include "support/Await.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;

TEST(SystemOpenerTest, HandsOnFewLinks) {
    struct Case {
        QString link;
        bool good;
    };
    for (const auto &[link, good] : std::initializer_list<Case>{
             {u"https://host/path?q=a%20b#f"_s, true},
             {u"HTTP://127.0.0.1:8080"_s, true},
             {u"tel:+86-10-8295-1332"_s, true},
             {u"tel:988"_s, true},
             {u"tel:(800)273.8255"_s, true},
             {u"tel:"_s, false},
             {u"tel:+"_s, false},
             {u"tel:12"_s, false},
             {u"tel:1234567890123456"_s, false},
             {u"tel:988;phone-context=x"_s, false},
             {u"tel:988?body=x"_s, false},
             {u"tel:988-"_s, false},
             {u"tel:*#06#"_s, false},
             {u"https:///path"_s, false},
             {u"https:path"_s, false},
             {u"file:///etc/passwd"_s, false},
             {u"javascript:alert(1)"_s, false},
             {u"mailto:a@b"_s, false},
             {u"//host/path"_s, false},
             {u"-h"_s, false},
             {u""_s, false},
         })
        EXPECT_EQ(SystemOpener::mayOpen(QUrl(link)), good) << link.toStdString();
}

#ifdef Q_OS_LINUX
/// A desktop with an opener of the test's.
class DesktopTest : public ::testing::Test {
protected:
    DesktopTest() {
        qputenv("PATH", QFile::encodeName(folder.path()) + ':' + path);
        qputenv("DISPLAY", ":99");
    }
    ~DesktopTest() override {
        qputenv("PATH", path);
        display.isEmpty() ? qunsetenv("DISPLAY") : qputenv("DISPLAY", display);
    }
    void install(const QByteArray &script) {
        QFile file(folder.filePath(u"xdg-open"_s));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + script);
        file.close();
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    QTemporaryDir folder;
    const QByteArray path = qgetenv("PATH");
    const QByteArray display = qgetenv("DISPLAY");
    SystemOpener opener;
};

TEST_F(DesktopTest, HearsWhatBecameOfALink) {
    const QUrl number(u"tel:120"_s);
    install("exit 4\n");
    EXPECT_TRUE(opener.open(number)) << "as far as can be told at once";
    EXPECT_FALSE(await(opener.openAndHear(number))) << "no program for it";
    install("exit 0\n");
    EXPECT_TRUE(await(opener.openAndHear(number)));
    EXPECT_FALSE(await(opener.openAndHear(QUrl(u"tel:*#06#"_s))));
}

TEST_F(DesktopTest, GivesTheLinkAsOneArgument) {
    install("printf '%s|' \"$#\" \"$@\" > \"$0.part\"\nmv \"$0.part\" \"$0.out\"\n");
    QFile out(folder.filePath(u"xdg-open.out"_s));
    EXPECT_FALSE(opener.open(QUrl(u"file:///etc/passwd"_s)));
    EXPECT_TRUE(opener.open(QUrl(u"https://host/$(touch x);'a b'?q=\"&r=*"_s)));
    EXPECT_TRUE(eventually([&] { return out.exists(); }));
    qunsetenv("DISPLAY");
    const QByteArray wayland = qgetenv("WAYLAND_DISPLAY");
    qunsetenv("WAYLAND_DISPLAY");
    EXPECT_FALSE(opener.open(QUrl(u"https://host/"_s))) << "no desktop to show it on";
    qputenv("DISPLAY", ":99");
    qputenv("PATH", "/nowhere");
    EXPECT_FALSE(opener.open(QUrl(u"https://host/"_s))) << "no opener";
    if (!wayland.isEmpty())
        qputenv("WAYLAND_DISPLAY", wayland);
    ASSERT_TRUE(out.open(QIODevice::ReadOnly));
    EXPECT_EQ(out.readAll(), "1|https://host/$(touch%20x);'a%20b'?q=%22&r=*|");
}
#endif

} // namespace lmp
