#include "dev/DevGit.h"
#include "dev/GitOutput.h"
#include "dev/Scripts.h"

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// A repository whose settings are all against a reader, and which says when one of them was obeyed.
class Repository : public Scripts {
public:
    Repository() {
        QDir(folder()).mkdir(u"repo"_s);
        const auto trap = write(u"trap"_s, "#!/bin/sh\ntouch '" + path(u"trapped"_s).toUtf8() + "'\ncat\n");
        git({u"init"_s, u"-q"_s, u"-b"_s, u"main"_s});
        for (const auto &[key, value] : QList<std::pair<QString, QString>>{
                 {u"user.name"_s, u"Tester"_s},
                 {u"user.email"_s, u"tester@lumenpair.invalid"_s},
                 {u"color.ui"_s, u"always"_s},
                 {u"color.diff"_s, u"always"_s},
                 {u"color.status"_s, u"always"_s},
                 {u"core.pager"_s, trap},
                 {u"pager.diff"_s, trap},
                 {u"pager.log"_s, trap},
                 {u"diff.external"_s, trap},
                 {u"diff.trap.textconv"_s, trap},
                 {u"filter.a=b.clean"_s, trap},
                 {u"filter.a=b.required"_s, u"true"_s},
                 {u"diff.noprefix"_s, u"true"_s},
                 {u"diff.mnemonicPrefix"_s, u"true"_s},
                 {u"core.fsmonitor"_s, trap},
                 {u"log.decorate"_s, u"full"_s},
                 {u"log.showSignature"_s, u"true"_s},
                 {u"format.pretty"_s, u"fuller"_s},
                 {u"status.short"_s, u"false"_s},
                 {u"status.relativePaths"_s, u"true"_s},
                 {u"status.renames"_s, u"false"_s},
                 {u"diff.renames"_s, u"false"_s},
                 {u"status.showUntrackedFiles"_s, u"no"_s},
             })
            git({u"config"_s, key, value});
        put(u".gitattributes"_s, "*.txt diff=trap filter=a=b\n");
        for (const char *hook : {"post-index-change", "fsmonitor-watchman"})
            QFile::copy(trap, path(u"repo/.git/hooks/"_s + QLatin1StringView(hook)));
    }

    DevGit here() const { return DevGit(root()); }
    QString root() const { return path(u"repo"_s); }
    bool wasTrapped() const { return QFile::exists(path(u"trapped"_s)); }
    void put(const QString &name, const QByteArray &text) const {
        QFile file(root() + u'/' + name);
        QDir().mkpath(QFileInfo(file).path());
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    void git(QStringList arguments) const {
        const auto ended =
            await(DevRun::toCompletion({.program = u"git"_s, .arguments = arguments, .directory = root()}, 60s));
        EXPECT_TRUE(ended && ended->isSuccess()) << qPrintable(arguments.join(u' ')) << qPrintable(ended->errorText);
        QFile::remove(path(u"trapped"_s));
    }
    QStringList codes() const {
        QStringList list;
        for (const auto &change : await(here().status()).value().changed)
            list.append(change.code + u' ' + change.path);
        return list;
    }
};

const QString oddName = u"目录/含 空格 \"引号\" 'x'\t\\ *.txt"_s;

TEST(DevGit, ReadsWhateverTheSettings) {
    Repository repository;
    const auto git = repository.here();
    EXPECT_TRUE(await(git.isRepository()));
    EXPECT_FALSE(await(DevGit(repository.folder()).isRepository()));
    EXPECT_FALSE(await(DevGit(repository.path(u"absent"_s)).isRepository()));
    // Before the first commit.
    repository.git({u"add"_s, u"."_s});
    EXPECT_EQ(await(git.status()).value().branch, u"main"_s);
    EXPECT_EQ(await(git.numstat()).value(), (QList<DevGit::NumStat>{{u".gitattributes"_s, 1, 0}}));
    EXPECT_FALSE(await(git.log(5)));

    repository.put(oddName, "一\n二\n");
    repository.put(u"binary"_s, QByteArray("\0\1\2", 3));
    repository.put(u"gone.txt"_s, "gone\n");
    repository.git({u"add"_s, u"."_s});
    repository.git({u"commit"_s, u"-q"_s, u"-m"_s, u"第一个提交"_s});
    EXPECT_EQ(await(git.diff(1000)).text, u"（没有改动）"_s);
    repository.put(oddName, "一\n三\n四\n");
    repository.put(u"binary"_s, QByteArray("\0\2", 2));
    repository.put(u"sub/new one"_s, "x");
    QFile::remove(repository.root() + u"/gone.txt"_s);
    EXPECT_EQ(repository.codes(),
              (QStringList{u" M binary"_s, u" D gone.txt"_s, u" M "_s + oddName, u"?? sub/new one"_s}));
    EXPECT_EQ(await(git.numstat()).value(),
              (QList<DevGit::NumStat>{{u"binary"_s, 0, 0}, {u"gone.txt"_s, 0, 1}, {oddName, 2, 1}}));
    const auto diff = await(git.diff(100'000)).text;
    EXPECT_TRUE(diff.contains(u"\n-二\n+三\n+四\n"_s)) << qPrintable(diff);
    EXPECT_TRUE(diff.contains(u"--- a/gone.txt\n"_s));
    EXPECT_FALSE(diff.contains(u'\x1b'));
    EXPECT_EQ(await(git.diff(10)).text, diff.first(10) + u"\n…（已截断，共 %1 字）"_s.arg(diff.size()));
    const auto log = await(git.log(5)).value();
    ASSERT_EQ(log.size(), 1);
    EXPECT_TRUE(log[0].endsWith(u" 第一个提交"_s)) << qPrintable(log[0]);
    EXPECT_FALSE(log[0].contains(u'\x1b'));
    EXPECT_EQ(await(DevGit(repository.folder()).diff(10)).text, u"（git diff 失败）"_s);
    EXPECT_FALSE(repository.wasTrapped());
}

TEST(DevGit, CommitsWhatWasChosen) {
    Repository repository;
    for (const char *name : {"stays", "removed", "staged removal", "old name"})
        repository.put(QLatin1StringView(name), QByteArray(name) + "\nmuch\nthe\nsame\nto\nbe\nfound\n");
    repository.put(u"sub/inner"_s, "x");
    repository.git({u"add"_s, u"."_s});
    repository.git({u"commit"_s, u"-q"_s, u"-m"_s, u"first"_s});
    repository.put(u"stays"_s, "changed");
    repository.put(oddName, "new");
    repository.put(u":(top)magic*"_s, "new");
    QFile::remove(repository.root() + u"/removed"_s);
    repository.git({u"rm"_s, u"-q"_s, u"staged removal"_s});
    repository.git({u"mv"_s, u"old name"_s, u"new name"_s});
    // From a folder below the top, with names from the top.
    const DevGit git(repository.root() + u"/sub"_s);
    const auto refused = await(git.commit({}, u"none"_s));
    EXPECT_EQ(refused.error(), u"没有选中要提交的文件"_s);
    EXPECT_TRUE(await(git.commit({u"absent"_s}, u"none"_s)).error().startsWith(u"git add 失败"_s));
    const QStringList chosen{oddName, u":(top)magic*"_s, u"removed"_s, u"staged removal"_s, u"new name"_s};
    const auto done = await(git.commit(chosen, u"-第二个\n\n正文"_s));
    EXPECT_TRUE(done) << qPrintable(done ? QString() : done.error());
    EXPECT_EQ(repository.codes(), QStringList{u" M stays"_s});
    EXPECT_TRUE(await(git.log(1)).value()[0].endsWith(u" -第二个"_s));
    EXPECT_TRUE(await(git.commit({u"sub/inner"_s}, u"nothing"_s)).error().startsWith(u"git commit 失败"_s));
}

TEST(DevGit, MakesWorktrees) {
    struct {
        QString name;
        QString safe;
    } const cases[] = {{u"my fix/1"_s, u"my-fix-1"_s},
                       {u"a_B-9"_s, u"a_B-9"_s},
                       {u"修复 x"_s, u"---x"_s},
                       {u"😀;$(x)"_s, u"----x-"_s}};
    for (const auto &[name, safe] : cases)
        EXPECT_EQ(DevGit::worktreeName(name), safe);
    Repository repository;
    repository.git({u"add"_s, u"."_s});
    repository.git({u"commit"_s, u"-q"_s, u"-m"_s, u"first"_s});
    const auto git = DevGit(repository.root() + u'/');
    EXPECT_EQ(await(git.newWorktree({})).error(), u"名字不能为空"_s);
    const auto made = await(git.newWorktree(u"my fix/1"_s)).value().text;
    EXPECT_EQ(made, repository.root() + u".wt-my-fix-1"_s);
    repository.put(u"sub/inner"_s, "x");
    EXPECT_EQ(await(DevGit(repository.root() + u"/sub"_s).newWorktree(u"x"_s)).value().text,
              repository.root() + u".wt-x"_s);
    EXPECT_EQ(await(DevGit(made).status()).value().branch, u"claude/my-fix-1"_s);
    EXPECT_FALSE(await(git.newWorktree(u"my fix/1"_s)));
}

TEST(GitOutput, ReadsHeadsAndRenames) {
    using Branch = std::optional<QString>;
    EXPECT_EQ(GitOutput::status("## a/b...origin/a/b [ahead 1]\0"_ba).branch, Branch(u"a/b"_s));
    EXPECT_EQ(GitOutput::status("## HEAD (no branch)\0"_ba).branch, Branch());
    EXPECT_EQ(GitOutput::status("R  new\0old\0?? x\0"_ba).changed,
              (QList<DevGit::Change>{{u"new"_s, u"R "_s, u"old"_s}, {u"x"_s, u"??"_s}}));
    EXPECT_EQ(GitOutput::numstat("1\t2\t\0old\0new\0-\t-\ta\tb\0"_ba),
              (QList<DevGit::NumStat>{{u"new"_s, 1, 2}, {u"a\tb"_s, 0, 0}}));
    EXPECT_EQ(GitOutput::diff("👨‍👩‍👧‍👦👨‍👩‍👧‍👦", 2),
              u"👨‍👩‍👧‍👦👨‍👩‍👧‍👦"_s);
    EXPECT_EQ(GitOutput::diff("👨‍👩‍👧‍👦字x", 2),
              u"👨‍👩‍👧‍👦字\n…（已截断，共 3 字）"_s);
}

} // namespace

} // namespace lmp
