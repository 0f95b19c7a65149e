#include "dev/codex/CodexCommand.h"
#include "dev/codex/CodexItems.h"

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
