#include "dev/DevRun.h"
#include "dev/Scripts.h"

#include <QProcess>

#include <gmock/gmock.h>

#include <fcntl.h>
#include <unistd.h>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using ::testing::ContainsRegex;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

TEST(DevProcess, TalksAndEnds) {
    Scripts scripts;
    for (int round = 0; round < 2; ++round) {
        const auto child = scripts.start("#!/bin/sh\nwhile read -r line; do echo \"got $line\"; done; exit 3\n");
        EXPECT_EQ(scripts.registry.liveCount(), 1);
        auto lines = child->lines();
        child->writeLine("one");
        EXPECT_EQ(await(nextLine(&lines)), "got one");
        for (int number = 0; number < 100; ++number)
            child->writeLine(QByteArray::number(number));
        child->closeStdin();
        child->writeLine("too late");
        for (int number = 0; number < 100; ++number)
            EXPECT_EQ(await(nextLine(&lines)), "got " + QByteArray::number(number));
        EXPECT_EQ(await(nextLine(&lines)), "(end)");
        EXPECT_EQ(await(child->exited()), DevProcess::Exit{.code = 3});
        EXPECT_FALSE(child->isRunning());
        EXPECT_EQ(scripts.registry.liveCount(), 0);
        child->writeLine("nobody there");
        child->terminate(1s);
    }
}

TEST(DevProcess, MovesMuchBothWays) {
    Scripts scripts;
    const auto child = scripts.start("#!/bin/sh\nexec cat\n");
    const QByteArray longLine(10'000'000, 'x');
    child->writeLine(longLine);
    child->writeLine("short");
    child->closeStdin();
    const auto lines = await(allLines(child));
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0] == longLine);
    EXPECT_EQ(lines[1], "short");
}

TEST(DevProcess, SaysWhyItCouldNotStart) {
    Scripts scripts;
    const auto description = [&scripts](DevProcess::Command command) {
        const auto launched = DevProcess::launch(std::move(command), scripts.registry);
        return launched ? u"started"_s : launched.error().description();
    };
    EXPECT_EQ(description({.program = u"no-such-tool"_s}), u"这台 Mac 上没找到 no-such-tool"_s);
    EXPECT_EQ(description({.program = scripts.path(u"absent"_s)}), u"这台 Mac 上没找到 "_s + scripts.path(u"absent"_s));
    EXPECT_EQ(description({.program = u"sh"_s, .directory = scripts.path(u"absent"_s)}),
              u"起不来：No such file or directory："_s + scripts.path(u"absent"_s));
    const QString text = scripts.write(u"text"_s, "no interpreter line");
    EXPECT_EQ(description({.program = text}), u"起不来：Exec format error："_s + text);
    EXPECT_EQ(scripts.registry.liveCount(), 0);

    scripts.registry.quitAndWait();
    EXPECT_EQ(description({.program = u"sh"_s}), u"起不来：应用正在退出，未启动新的本地进程"_s);
}

/// What a tool gets of this program: environment, descriptors and signals, its own and its guardian's.
TEST(DevProcess, InheritsNoSecret) {
    Scripts scripts;
    for (const char *name : {"LMP_CANARY", "TOKEN_RELAY_URL", "ARK_API_KEY"})
        qputenv(name, "canary-in-environment");
    qputenv("MY_LMP_X", "mine");
    QFile secret(scripts.path(u"canary-in-descriptor"_s));
    ASSERT_TRUE(secret.open(QIODevice::ReadWrite));
    const int leaking = ::dup(secret.handle()); // without close-on-exec
    const auto child = scripts.start(R"(#!/bin/sh
while read -r line; do case $line in Sig[BI]*) echo "$line";; esac; done </proc/$$/status
exec python3 - <<'END'
import os
me, parent = os.getpid(), os.getppid()
for pid in (me, parent):
    print("environment", open(f"/proc/{pid}/environ").read())
    files = {}
    for fd in os.listdir(f"/proc/{pid}/fd"):
        try: files[fd] = os.readlink(f"/proc/{pid}/fd/{fd}")
        except OSError: pass # the listing's own
    print("descriptors", "own" if pid == me else "guardian", sorted(files), files)
print("leader", os.getpgid(0) == me == os.getsid(0), os.getpgid(parent) != me)
END
)");
    const auto seen = await(allLines(child)).join('\n').toStdString();
    ::close(leaking);
    EXPECT_THAT(seen, Not(HasSubstr("canary")));
    EXPECT_THAT(seen, Not(HasSubstr("LMP_CANARY")));
    EXPECT_THAT(seen, HasSubstr("MY_LMP_X=mine"));
    EXPECT_THAT(seen, HasSubstr("descriptors own ['0', '1', '2']"));
    EXPECT_THAT(seen, HasSubstr("descriptors guardian ['0', '1', '2', '3']"));
    EXPECT_THAT(seen, HasSubstr("leader True True"));
    // The C library keeps two signals to itself, above those of the system.
    EXPECT_THAT(seen, ContainsRegex("SigBlk:\t0{16}\nSigIgn:\t[0-9a-f]{8}[08]0{7}\n"));
    for (const char *name : {"LMP_CANARY", "TOKEN_RELAY_URL", "ARK_API_KEY", "MY_LMP_X"})
        qunsetenv(name);
}

TEST(DevProcess, KeepsTheTailOfStandardError) {
    Scripts scripts;
    const auto child =
        scripts.start("#!/bin/sh\n"
                      "i=0; while [ $i -lt 1000 ]; do printf '\\033[31m%010d\\033[0m' $i >&2; i=$((i+1)); done\n"
                      "kill -KILL $$\n");
    EXPECT_EQ(await(child->exited()), DevProcess::Exit{.signal = SIGKILL});
    QString all;
    for (int number = 0; number < 1000; ++number)
        all += QString::number(number).rightJustified(10, u'0');
    EXPECT_EQ(child->stderrTail(), all.last(4000));
}

TEST(DevProcess, HoldsAFloodBack) {
    Scripts scripts;
    // Writes until nothing has been taken for a while, says how much that was, and writes no more.
    const auto child = scripts.start(R"(#!/usr/bin/env python3
import os, select, sys
os.set_blocking(1, False)
line, total = b"x" * 199 + b"\n", 0
while select.select([], [1], [], 0.3)[1]:
    try: total += os.write(1, line)
    except BlockingIOError: pass
print(total, file=sys.stderr, flush=True)
sys.stdin.read()
)");
    auto lines = child->lines();
    EXPECT_EQ(await(nextLine(&lines)).size(), 199);
    ASSERT_TRUE(eventually([&child] { return !child->stderrTail().isEmpty(); }));
    const auto total = child->stderrTail().trimmed().toLongLong();
    EXPECT_LT(total, 4'000'000);
    qint64 taken = 200;
    while (taken < total)
        taken += await(nextLine(&lines)).size() + 1;
    EXPECT_EQ(taken, total);
}

TEST(DevProcess, EndsTheOutputAtALineWithoutEnd) {
    Scripts scripts;
    const auto child = scripts.start("#!/bin/sh\necho first\nhead -c 70000000 /dev/zero | tr '\\0' x\necho last\n");
    auto lines = child->lines();
    EXPECT_EQ(await(nextLine(&lines)), "first");
    EXPECT_EQ(await(nextLine(&lines)), "(end)");
    EXPECT_TRUE(lines.isTooLong());
    child->terminate(0ms);
    EXPECT_TRUE(await(child->terminateAndWait(5s)));

    // The word of it has room behind a line that fills more than the channel.
    const auto heavy =
        scripts.start("#!/bin/sh\nfor size in 2000000 70000000; do head -c $size /dev/zero | tr '\\0' x; echo; done\n");
    auto late = heavy->lines();
    await(heavy->exited());
    EXPECT_EQ(await(nextLine(&late)).size(), 2'000'000);
    EXPECT_EQ(await(nextLine(&late)), "(end)");
    EXPECT_TRUE(late.isTooLong());
}

TEST(DevProcess, IsReadOnWhenNobodyListens) {
    Scripts scripts;
    const auto child = scripts.start("#!/bin/sh\necho one\nhead -c 8000000 /dev/zero\nexit 4\n");
    {
        auto lines = child->lines();
        EXPECT_EQ(await(nextLine(&lines)), "one");
    }
    EXPECT_EQ(await(child->exited()).code, 4);
}

/// Neither the child nor its pipes are kept for output that nobody has asked for.
TEST(DevProcess, KeepsNothingOfWhatNobodyTook) {
    const auto open = [] {
        return QDir(u"/proc/self/fd"_s).entryList(QDir::Files | QDir::System).size();
    };
    Scripts scripts;
    await(scripts.start("#!/bin/sh\n")->exited()); // what is made once is there then
    ASSERT_TRUE(eventually([&] { return scripts.registry.liveCount() == 0; }));
    const auto before = open();
    for (const bool asked : {false, true}) {
        auto child = scripts.start("#!/bin/sh\nhead -c 3000000 /dev/zero | tr '\\0' x\n");
        if (asked)
            child->terminate(1s);
        child.reset();
    }
    EXPECT_TRUE(eventually([&] { return open() <= before; })) << open() << " " << before;
}

TEST(DevProcess, TakesNoMoreThanAChildReads) {
    Scripts scripts;
    const auto child = scripts.start("#!/bin/sh\nexec sleep 1000\n");
    const QByteArray line(DevProcess::maxUnread / 2 - 1000, 'x');
    EXPECT_TRUE(child->writeLine(line));
    EXPECT_TRUE(child->writeLine(line));
    EXPECT_FALSE(child->writeLine(line));
    EXPECT_TRUE(child->writeLine("short"));
}

TEST(DevProcess, StopsInTwoStages) {
    Scripts scripts;
    struct {
        QByteArray script;
        DevProcess::Exit exit;
    } const cases[] = {
        {"#!/bin/sh\ntrap 'exit 5' TERM\necho ready\nwhile :; do sleep 0.05; done\n", {.code = 5}},
        {"#!/bin/sh\necho ready\nread -r line\nkill -STOP $$\n", {.signal = SIGTERM}},
        {"#!/bin/sh\ntrap '' TERM\necho ready\nwhile :; do sleep 1000; done\n", {.signal = SIGKILL}},
    };
    for (const auto &[script, exit] : cases) {
        const auto child = scripts.start(script);
        auto lines = child->lines();
        EXPECT_EQ(await(nextLine(&lines)), "ready");
        child->terminate(exit.signal == SIGKILL ? 300ms : 20s);
        EXPECT_EQ(await(child->exited()), exit);
        EXPECT_EQ(await(nextLine(&lines)), "(end)");
    }
    const auto deaf = scripts.start("#!/bin/sh\ntrap '' TERM\necho ready\nwhile :; do sleep 1000; done\n");
    auto lines = deaf->lines();
    EXPECT_EQ(await(nextLine(&lines)), "ready");
    EXPECT_FALSE(await(deaf->terminateAndWait(10ms)));
    EXPECT_TRUE(deaf->isRunning());
    EXPECT_TRUE(await(deaf->terminateAndWait(10s)));
}

TEST(DevProcess, LeavesNobodyBehind) {
    for (const bool deaf : {false, true}) {
        for (const auto &end : {"stop"_ba, "leave"_ba, "release"_ba, "kill"_ba}) {
            Scripts scripts;
            auto child = scripts.startFamily(deaf);
            auto lines = child->lines();
            const auto pids = familyIn(await(nextLine(&lines)));
            EXPECT_EQ(running(pids), 4);
            if (end == "stop")
                child->terminate(200ms);
            else if (end == "leave")
                child->writeLine("leave");
            else if (end == "release")
                child.reset();
            else
                ::kill(static_cast<pid_t>(pids.first()), SIGKILL);
            EXPECT_EQ(await(nextLine(&lines)), "(end)");
            EXPECT_TRUE(eventually([&scripts] { return scripts.registry.liveCount() == 0; }));
            EXPECT_EQ(running(pids), 0) << end.constData() << deaf;
        }
    }
}

namespace {

/// Says who it is: its guardian, itself, one in its group and one in a session of its own, then when it is asked to
/// end.
constexpr auto watched = R"(#!/bin/sh
trap 'echo asked' TERM
(trap '' TERM; while :; do sleep 1000; done) &
group=$!
setsid sh -c 'trap "" TERM; while :; do sleep 1000; done' &
echo ready $PPID $$ $group $!
while :; do sleep 1000 & wait $!; done
)";

} // namespace

TEST(DevProcess, SaysThatItsGuardianWasKilled) {
    Scripts scripts;
    const auto child = scripts.start(watched);
    auto lines = child->lines();
    const auto pids = familyIn(await(nextLine(&lines)));
    ASSERT_EQ(running(pids), 4);
    ::kill(static_cast<pid_t>(pids[0]), SIGKILL);
    EXPECT_EQ(await(child->exited()), (DevProcess::Exit{.signal = SIGKILL, .unwatched = true}));
    EXPECT_TRUE(eventually([&] { return running(pids.first(3)) == 0; }));
    ::kill(-static_cast<pid_t>(pids[3]), SIGKILL); // who got away, and what it waits for
    EXPECT_TRUE(eventually([&] { return running(pids) == 0 && scripts.registry.liveCount() == 0; }));
}

/// A guardian that does not come to an end in time is not killed: it is told, and ends everything later.
TEST(DevProcess, QuitLeavesTheRestToTheGuardian) {
    Scripts scripts;
    const auto child = scripts.start(watched);
    auto lines = child->lines();
    const auto pids = familyIn(await(nextLine(&lines)));
    ASSERT_EQ(running(pids), 4);
    auto quitting = scripts.registry.quit();
    EXPECT_EQ(await(nextLine(&lines)), "asked");
    ::kill(static_cast<pid_t>(pids[0]), SIGSTOP);
    await(std::move(quitting));
    EXPECT_TRUE(eventually([&] { return running(pids) == 0 && scripts.registry.liveCount() == 0; }));
}

TEST(DevProcess, QuitEndsAllOfThem) {
    Scripts scripts;
    std::vector<std::shared_ptr<DevProcess>> children;
    QList<qint64> pids;
    for (int number = 0; number < 3; ++number) {
        children.push_back(scripts.startFamily(true));
        auto lines = children.back()->lines();
        pids += familyIn(await(nextLine(&lines)));
    }
    EXPECT_EQ(running(pids), 12);
    const auto begun = std::chrono::steady_clock::now();
    await(scripts.registry.quit());
    const auto took = std::chrono::steady_clock::now() - begun;
    EXPECT_GE(took, 900ms);
    EXPECT_LT(took, 4s);
    EXPECT_EQ(running(pids), 0);
    EXPECT_EQ(scripts.registry.liveCount(), 0);
    EXPECT_EQ(scripts.tryStart("#!/bin/sh\n").error().description(), u"起不来：应用正在退出，未启动新的本地进程"_s);
}

TEST(DevProcess, NothingSurvivesTheKilledProgram) {
    for (const bool deaf : {false, true}) {
        Scripts scripts;
        QStringList arguments{u"1"_s, family};
        if (deaf)
            arguments.append(u"deaf"_s);
        // Not through DevProcess: its guardian would clean up what the program's own leaves.
        QProcess program;
        program.setWorkingDirectory(scripts.folder());
        program.start(QCoreApplication::applicationDirPath() + u"/child_host"_s, arguments);
        ASSERT_TRUE(program.waitForReadyRead());
        const auto pids = familyIn(program.readLine());
        EXPECT_EQ(running(pids), 4);
        program.kill();
        EXPECT_TRUE(eventually([&pids] { return running(pids) == 0; }, 2000)) << deaf;
        EXPECT_TRUE(eventually([&program] { return program.state() == QProcess::NotRunning; }));
    }
}

TEST(DevRun, RunsToCompletion) {
    Scripts scripts;
    const auto run = [&scripts](const QByteArray &text, std::chrono::milliseconds timeout, std::stop_token stop = {}) {
        const QString name = scripts.write(u"command"_s, text);
        return await(DevRun::toCompletion({.program = name, .directory = scripts.folder()}, timeout, stop)).value();
    };
    const auto ended = run("#!/bin/sh\nprintf 'a\\377b\\0c'; echo bad >&2; cat; exit 9\n", 20s);
    EXPECT_EQ(ended.output, "a\377b\0c"_ba);
    EXPECT_EQ(ended.errorText, u"bad\n"_s);
    EXPECT_EQ(ended.exit.code, 9);
    EXPECT_FALSE(ended.isSuccess());
    const auto large = run("#!/bin/sh\nhead -c 3000000 /dev/zero; head -c 3000000 /dev/zero >&2\n", 20s);
    EXPECT_EQ(large.output.size(), 3'000'000);
    EXPECT_TRUE(large.isSuccess());

    const auto late = run("#!/bin/sh\necho begun; exec sleep 1000\n", 50ms);
    EXPECT_TRUE(late.timedOut);
    EXPECT_EQ(late.exit.signal, SIGTERM);
    std::stop_source stop;
    stop.request_stop();
    const auto stopped = run("#!/bin/sh\nexec sleep 1000\n", 20s, stop.get_token());
    EXPECT_FALSE(stopped.isSuccess());
    EXPECT_FALSE(stopped.timedOut);

    const auto missing = await(DevRun::toCompletion({.program = u"no-such-tool"_s}, 1s));
    EXPECT_EQ(missing.error(), DevProcess::Failure::notFound(u"no-such-tool"_s));
}

} // namespace

} // namespace lmp
