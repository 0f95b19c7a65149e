#include "dev/DevExecutable.h"
#include "dev/LoginShell.h"
#include "dev/Scripts.h"

#include <gmock/gmock.h>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

TEST(DevExecutable, FindsTheMostPersonalFirst) {
    Scripts scripts;
    const QString home = scripts.folder();
    const auto install = [&scripts](const QString &name) {
        QDir().mkpath(QFileInfo(scripts.path(name)).path());
        return scripts.write(name, "#!/bin/sh\n");
    };
    const auto find = [&home](const QString &name, const QString &path) {
        return DevExecutable::find(name, home, path).value_or(u"(none)"_s);
    };
    EXPECT_EQ(find(u"lumenpair-tool"_s, {}), u"(none)"_s);
    const QString inPath = install(u"second/lumenpair-tool"_s);
    QDir().mkpath(scripts.path(u"first/lumenpair-tool"_s)); // a folder of that name is no program
    QFile(install(u"third/lumenpair-tool"_s)).setPermissions(QFile::ReadOwner);
    const QString path =
        scripts.path(u"third"_s) + u"::relative:"_s + scripts.path(u"first"_s) + u':' + scripts.path(u"second"_s);
    EXPECT_EQ(find(u"lumenpair-tool"_s, path), inPath);
    const QString local = install(u".claude/local/lumenpair-tool"_s);
    EXPECT_EQ(find(u"lumenpair-tool"_s, path), local);
    const QString personal = install(u".local/bin/lumenpair-tool"_s);
    EXPECT_EQ(find(u"lumenpair-tool"_s, path), personal);
    const QString ownShell = install(u"second/sh"_s);
    EXPECT_TRUE(find(u"sh"_s, scripts.path(u"second"_s)).endsWith(u"bin/sh"_s)); // the PATH comes last
    EXPECT_EQ(find(ownShell, {}), ownShell);
    EXPECT_EQ(find(u"second/sh"_s, {}), u"(none)"_s);
    EXPECT_EQ(find({}, path), u"(none)"_s);
}

TEST(DevExecutable, AddsToThePathOfAChild) {
    struct {
        QString path;
        QString searched;
    } const cases[] = {
        {{}, u"/h/.local/bin:/opt/homebrew/bin:/usr/local/bin:/h/.claude/local:/usr/bin:/bin"_s},
        {u"/x::/opt/homebrew/bin:/x"_s,
         u"/x:/opt/homebrew/bin:/x:/h/.local/bin:/usr/local/bin:/h/.claude/local:/usr/bin:/bin"_s},
    };
    for (const auto &[path, searched] : cases)
        EXPECT_EQ(DevExecutable::searchPath(path, u"/h"_s), searched);
}

TEST(DevExecutable, KeepsTheProgramsOwnSettingsFromAChild) {
    const QList<QByteArray> environment{
        "A=1",          "LMP_BASE=x",  "MY_LMP_X=2", "TOKEN_RELAY=x", "TOKEN_RELAY_URL=x",
        "ARK_API_KEY=", "MARK_ARK_=3", "PATH=/p",    "B=LMP_",        "C=\xff"};
    EXPECT_EQ(DevExecutable::childEnvironment(environment, u"/p:/q"_s, u"/h"_s),
              (QList<QByteArray>{"A=1", "MY_LMP_X=2", "MARK_ARK_=3", "B=LMP_", "C=\xff",
                                 "PATH=" + DevExecutable::searchPath(u"/p:/q"_s, u"/h"_s).toUtf8()}));
}

TEST(LoginShell, IsAskedForItsPath) {
    Scripts scripts;
    const QString shell = scripts.write(u"shell"_s, "#!/bin/sh\necho noise from a start file\n"
                                                    "printf '%s\\n' \"$1 $2 $3\" >args\n"
                                                    "PATH=/from/shell:$PATH exec /bin/sh -c \"$4\"\n");
    const QString home = qEnvironmentVariable("HOME");
    qputenv("HOME", scripts.folder().toUtf8());
    EXPECT_TRUE(LoginShell::askFor(shell, 10s).startsWith(u"/from/shell:"_s));
    EXPECT_EQ(scripts.read(u"args"_s), "-l -i -c\n");
    const QString cShell = scripts.write(u"tcsh"_s, "#!/bin/sh\n[ \"$1\" = -c ] || exit 1\n"
                                                    "PATH=/from/c/shell:$PATH exec /bin/sh -c \"$2\"\n");
    EXPECT_TRUE(LoginShell::askFor(cShell, 10s).startsWith(u"/from/c/shell:"_s));
    const QString talkative = scripts.write(u"talkative"_s, "#!/bin/sh\nhead -c 3000000 /dev/zero | tr '\\0' x\n"
                                                            "PATH=/from/shell:$PATH exec /bin/sh -c \"$4\"\n");
    EXPECT_TRUE(LoginShell::askFor(talkative, 10s).startsWith(u"/from/shell:"_s));
    EXPECT_EQ(LoginShell::askFor(scripts.write(u"mute"_s, "#!/bin/sh\nexit 1\n"), 10s), QString());
    EXPECT_EQ(LoginShell::askFor(scripts.path(u"absent"_s), 10s), QString());
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_EQ(LoginShell::askFor(scripts.write(u"slow"_s, "#!/bin/sh\ntrap '' TERM\nsleep 1000\n"), 100ms), QString());
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 3s);
    qputenv("HOME", home.toUtf8());

    EXPECT_EQ(LoginShell::join(u"/a:/b"_s, u"/b:/c::/a"_s), u"/a:/b:/c"_s);
    EXPECT_FALSE(LoginShell::applicationPath().isEmpty());
    EXPECT_TRUE(LoginShell::isKnown());
}

} // namespace

} // namespace lmp
