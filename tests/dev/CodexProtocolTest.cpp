#include "dev/codex/CodexCommand.h"
#include "dev/codex/CodexItems.h"
#include "dev/codex/CodexQuestion.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;

TEST(CodexProtocolTest, TheShellAroundACommand) {
    struct Row {
        QString given, inner;
    };
    for (const auto &[given, inner] : {
             Row{u"/bin/bash -lc 'npm test'"_s, u"npm test"_s},
             Row{u"bash -c \"echo \\\"a b\\\"\""_s, u"echo \"a b\""_s},
             Row{u"/usr/bin/zsh -lc 'echo '\"'\"'it'\"'\"''"_s, u"echo 'it'"_s},
             Row{u"sh -c ls"_s, u"ls"_s},
             Row{u"bash -lc \"bash -lc 'rm -rf x'\""_s, u"rm -rf x"_s},
             // Anything else stays as it is.
             Row{u"npm test"_s, u"npm test"_s},
             Row{u"bash -lc 'a' b"_s, u"bash -lc 'a' b"_s},
             Row{u"bash -lc 'a' && rm x"_s, u"bash -lc 'a' && rm x"_s},
             Row{u"bash -lc \"$(evil)\""_s, u"bash -lc \"$(evil)\""_s},
             Row{u"bash -lc 'open"_s, u"bash -lc 'open"_s},
             Row{u"bash script.sh now"_s, u"bash script.sh now"_s},
             Row{u"notbash -lc 'x'"_s, u"notbash -lc 'x'"_s},
         })
        EXPECT_EQ(codex_command::withoutShell(given), inner);
}

TEST(CodexProtocolTest, KeepsNoMessageWithoutEnd) {
    CodexItems items;
    CodexItems::Events events;
    for (int piece = 0; piece < 40; ++piece)
        items.messageDelta({.itemId = u"m"_s, .delta = QString(100'000, u'x')}, events);
    EXPECT_EQ(events.size(), 40U);
    events.clear();
    items.closeAll(events);
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(std::get<dev_event::AssistantText>(events.front()).text.size(), 1024 * 1024);
}

/// Which changes of files leave the repository, and so are put to the user in every mode.
TEST(CodexProtocolTest, WhatIsOutside) {
    const QTemporaryDir folder;
    const QString repository = folder.filePath(u"repo"_s);
    ASSERT_TRUE(QDir().mkpath(repository + u"/sub"_s));
    ASSERT_TRUE(QFile::link(folder.filePath(u"not/there/yet"_s), repository + u"/out"_s));
    ASSERT_TRUE(QFile::link(u"sub/new"_s, repository + u"/in"_s));
    ASSERT_TRUE(QFile::link(u"loop"_s, repository + u"/loop"_s));
    ASSERT_TRUE(QFile::link(repository, folder.filePath(u"alias"_s)));
    struct Row {
        QString path;
        bool outside;
    };
    for (const auto &[path, outside] : {
             Row{u"a.txt"_s, false},
             Row{u"new/deep/a.txt"_s, false},
             Row{repository + u"/a.txt"_s, false},
             Row{folder.filePath(u"alias/a.txt"_s), false},
             Row{u"in"_s, false},
             Row{u"out"_s, true},
             Row{u"loop"_s, true},
             Row{u"sub/../../a.txt"_s, true},
             Row{folder.filePath(u"repository"_s), true},
             Row{u"/"_s, true},
             Row{QString(5000, u'x'), true},
         }) {
        CodexItems items;
        CodexItems::Events events;
        items.started({.type = u"fileChange"_s, .id = u"f"_s, .changes = {{{.path = path, .kind = {u"add"_s}}}}},
                      events);
        const codex_message::Request request{.method = u"item/fileChange/requestApproval"_s,
                                             .params = {{"itemId", "f"}}};
        EXPECT_EQ(CodexQuestion::of(request, items, repository)->mustAsk, outside) << path.toStdString();
    }
}

TEST(CodexProtocolTest, LinesOfAChange) {
    struct Row {
        QString type, diff;
        qint64 added, removed;
    };
    for (const auto &[type, diff, added, removed] : {
             Row{u"add"_s, u"one\ntwo\n"_s, 2, 0},
             Row{u"add"_s, u"+one\n-two"_s, 2, 0},
             Row{u"add"_s, {}, 0, 0},
             Row{u"delete"_s, u"one\ntwo"_s, 0, 2},
             Row{u"update"_s, u"@@ -1,2 +1,2 @@\n one\n-two\n+three\n"_s, 1, 1},
             Row{u"update"_s, u"--- a\n+++ b\n@@ -1 +1,2 @@\n--- x\n+++ y\n+z\n"_s, 2, 1},
         }) {
        const auto lines = CodexItems::count({.path = u"f"_s, .kind = {.type = type}, .diff = diff});
        EXPECT_EQ(lines.added, added) << diff.toStdString();
        EXPECT_EQ(lines.removed, removed) << diff.toStdString();
    }
}

} // namespace lmp
