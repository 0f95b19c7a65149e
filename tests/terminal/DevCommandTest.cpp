#include "terminal/CommandLine.h"
#include "terminal/DevControl.h"
#include "terminal/DevQuestionText.h"

#include "support/Await.h"
#include "support/PseudoTerminal.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <csignal>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace lmp {

using namespace Qt::StringLiterals;
using ::testing::HasSubstr;

/// The program as people start it, with a script that answers to Codex's name.
class DevCommandTest : public ::testing::Test {
protected:
    struct Run {
        int code = -1;
        std::string out, err;
    };

    void SetUp() override {
        for (const QString &tool : {u"codex"_s, u"claude"_s})
            ASSERT_TRUE(QFile::link(QStringLiteral(LMP_TEST_SOURCES "/agents/scripted_") + tool + u".py"_s,
                                    m_home.filePath(tool)));
        ASSERT_EQ(::mkfifo(path("word"), 0600), 0);
    }
    const char *path(const char *name) const {
        m_path = m_home.filePath(QString::fromLatin1(name)).toLocal8Bit();
        return m_path.constData();
    }
    /// Puts a shell script in the place of Codex.
    void replaceCodex(const QByteArray &script) const {
        QFile file(m_home.filePath(u"codex"_s));
        ASSERT_TRUE(file.remove() && file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + script);
        ASSERT_TRUE(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
    /// The script that stands in for Codex waits for it.
    bool giveWord() const {
        int word = -1;
        const char *const name = path("word");
        return eventually([&] { return (word = ::open(name, O_WRONLY | O_NONBLOCK | O_CLOEXEC)) >= 0; }) &&
               ::close(word) == 0;
    }
    /// The process that wrote its number to the file "pid".
    int child() const {
        QFile file(m_home.filePath(u"pid"_s));
        return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().toInt() : 0;
    }
    void start(QProcess &program, const QStringList &arguments) const {
        startLocal(program, QStringList{u"dev"_s, u"--engine"_s, u"codex"_s, u"--repo"_s, m_home.path()} + arguments);
    }
    void startLocal(QProcess &program, const QStringList &arguments) const {
        auto env = QProcessEnvironment::systemEnvironment();
        env.insert(u"HOME"_s, m_home.path());
        env.insert(u"PATH"_s, m_home.path() + u':' + env.value(u"PATH"_s));
        env.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
        env.insert(u"TERM"_s, u"xterm"_s);
        env.insert(u"SHELL"_s, u"/bin/sh"_s);
        program.setProcessEnvironment(env);
        program.start(QCoreApplication::applicationDirPath() + u"/lumenpair-terminal"_s, arguments);
    }
    static int code(QProcess &program) {
        EXPECT_TRUE(eventually([&] { return program.state() == QProcess::NotRunning; }, 60'000));
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit) << program.readAllStandardError().toStdString();
        return program.exitCode();
    }
    Run run(const QStringList &arguments, const QByteArray &input = {}) const {
        QProcess program;
        start(program, arguments);
        program.write(input);
        program.closeWriteChannel();
        const int left = code(program);
        return {left, program.readAllStandardOutput().toStdString(), program.readAllStandardError().toStdString()};
    }

    QTemporaryDir m_home;
    mutable QByteArray m_path;
};

TEST_F(DevCommandTest, OneTurn) {
    struct Row {
        QStringList arguments;
        QByteArray input;
        int code;
        std::string out, err; ///< all of the one, a part of the other
    };
    for (const Row &row : {
             Row{{u"hello"_s}, {}, 0, "hello\n", "script"},
             Row{{}, "hello\n", 0, "hello\n", "script"},
             Row{{u"die"_s}, {}, 1, "", "codex app-server 中途退出："},
             Row{{u"ask"_s}, {}, 0, "told: decline\n", "这里没有人可以问"},
             Row{{u"--allow"_s, u"once"_s, u"ask"_s}, {}, 0, "told: accept\n", "按 --allow once 放行"},
             Row{{u"--mode"_s, u"readOnly"_s, u"ask"_s}, {}, 0, "told: decline\n", "当前是只读档位"},
             Row{{u"--mode"_s, u"none"_s, u"ask"_s}, {}, 2, "", "--mode 只能是"},
             Row{{u" "_s}, {}, 2, "", "没有要说的话"},
         }) {
        SCOPED_TRACE(row.arguments.join(u' ').toStdString());
        const auto seen = run(row.arguments, row.input);
        EXPECT_EQ(seen.code, row.code);
        EXPECT_EQ(seen.out, row.out);
        EXPECT_THAT(seen.err, HasSubstr(row.err));
    }
}

TEST_F(DevCommandTest, AProgramsCommands) {
    const std::string begun = R"({"type":"sessionStarted","engineSessionId":"thread","model":"script"}
{"type":"notice","text":"Codex 线程已建：模型 script"}
)";
    auto seen = run({u"--jsonl"_s}, "nonsense\n{\"send\":\"hello\"}");
    EXPECT_EQ(seen.code, 0);
    EXPECT_THAT(seen.out, HasSubstr(R"({"type":"error","reason":"这一行看不懂：)"));
    EXPECT_THAT(seen.out, HasSubstr(begun));
    EXPECT_THAT(seen.out, HasSubstr("{\"type\":\"assistantText\",\"text\":\"hello\"}\n"
                                    "{\"type\":\"turnCompleted\",\"usage\":{"));

    // One turn only: it ends with it, though more could be said.
    QProcess once;
    start(once, {u"--jsonl"_s, u"hello"_s});
    once.write("{\"setMode\":\"full\"}\n");
    EXPECT_EQ(code(once), 0);

    // The end of input leaves nobody to ask.
    seen = run({u"--jsonl"_s, u"ask"_s});
    EXPECT_EQ(seen.code, 0);
    EXPECT_THAT(seen.out, HasSubstr(R"({"type":"permissionRequest","id":"0","tool":"bash","summary":")"));
    EXPECT_THAT(seen.out, HasSubstr("told: decline"));

    QProcess program;
    QByteArray out;
    const auto says = [&](const QByteArray &text) {
        return eventually([&] { return (out += program.readAllStandardOutput()).contains(text); }, 30'000);
    };
    start(program, {u"--jsonl"_s});
    program.write("{\"send\":\"ask\"}\n");
    ASSERT_TRUE(says("permissionRequest"));
    program.write("{\"respond\":{\"requestId\":\"0\",\"decision\":\"allowSession\"}}\n");
    ASSERT_TRUE(says("told: acceptForSession"));
    program.write("{\"send\":\"wait\"}\n");
    ASSERT_TRUE(says("thinking"));
    // What cannot be said leaves the turn that runs as it is.
    program.write("{\"send\":\"refuse\"}\n");
    ASSERT_TRUE(says("not now"));
    program.write("{\"interrupt\":true}\n");
    ASSERT_TRUE(says("\"interrupted\""));
    program.write("{\"stop\":true}\n");
    EXPECT_EQ(code(program), 130); // as the last turn went
}

TEST_F(DevCommandTest, AConversationOnATerminal) {
    PseudoTerminal terminal;
    ASSERT_TRUE(terminal.isOpen());
    QProcess program;
    terminal.attach(program);
    start(program, {});
    ASSERT_TRUE(terminal.shows(u"你："_s));
    terminal.type("ask\n");
    // What a terminal would act on is shown, not done.
    ASSERT_TRUE(terminal.shows(u"make ␛[8mhidden"_s));
    ASSERT_TRUE(terminal.shows(u"4 拒绝并说明："_s));
    terminal.type("4\n");
    ASSERT_TRUE(terminal.shows(u"为什么："_s));
    terminal.type("先写测试\n");
    ASSERT_TRUE(terminal.shows(u"told: decline"_s));
    ASSERT_TRUE(terminal.shows(u"你："_s));
    terminal.type("ask\n");
    ASSERT_TRUE(terminal.shows(u"4 拒绝并说明："_s));
    terminal.type("\x03");
    ASSERT_TRUE(terminal.shows(u"已停下。"_s));
    ASSERT_TRUE(terminal.shows(u"你："_s));
    terminal.type("wait\n");
    ASSERT_TRUE(terminal.shows(u"thinking"_s));
    terminal.type("\x03");
    ASSERT_TRUE(terminal.shows(u"已停下。"_s));
    ASSERT_TRUE(terminal.shows(u"你："_s));
    // The second one in a row leaves.
    terminal.type("\x03");
    EXPECT_EQ(code(program), 130);
    EXPECT_FALSE(terminal.shown().contains("\x1b[8m"));
}

TEST_F(DevCommandTest, LinesThatAreNone) {
    const auto seen = run({u"--jsonl"_s}, QByteArray(5 << 20, 'x') + "\n{\"send\":\"\xff\"}\n{\"send\":\"hello\"}\n" +
                                              QByteArray(5 << 20, 'x'));
    EXPECT_EQ(seen.code, 0);
    EXPECT_EQ(QByteArray::fromStdString(seen.out).count("这一行太长了"), 2);
    EXPECT_THAT(seen.out, HasSubstr("不是 UTF-8"));
    EXPECT_THAT(seen.out, HasSubstr("\"text\":\"hello\""));
}

TEST_F(DevCommandTest, WhatHappensBetweenTurnsCountsForNone) {
    QProcess claude;
    startLocal(claude, {u"dev"_s, u"--engine"_s, u"claude"_s, u"--repo"_s, m_home.path(), u"--jsonl"_s});
    claude.write("{\"interrupt\":true}\n{\"send\":\"hello\"}\n");
    claude.closeWriteChannel();
    EXPECT_EQ(code(claude), 0);
    EXPECT_TRUE(claude.readAllStandardOutput().contains("\"text\":\"hello\""));

    QProcess codex;
    QByteArray out;
    start(codex, {u"--jsonl"_s});
    codex.write("{\"send\":\"moan\"}\n");
    ASSERT_TRUE(eventually([&] { return (out += codex.readAllStandardOutput()).contains("alas"); }, 30'000));
    codex.write("{\"send\":\"hello\"}\n");
    codex.closeWriteChannel();
    EXPECT_EQ(code(codex), 0);
}

TEST_F(DevCommandTest, QuestionsThatComeLateOrGo) {
    PseudoTerminal terminal;
    ASSERT_TRUE(terminal.isOpen());
    QProcess program;
    terminal.attach(program);
    start(program, {});
    ASSERT_TRUE(terminal.shows(u"你："_s));
    for (const bool answers : {true, false}) {
        terminal.type("late\n");
        ASSERT_TRUE(terminal.shows(u"hello"_s));
        ASSERT_TRUE(terminal.shows(u"你："_s));
        terminal.type("shout dra");
        ASSERT_TRUE(terminal.shows(u"shout dra"_s));
        // The question takes the place of the prompt, which comes back with what was typed.
        ASSERT_TRUE(giveWord());
        ASSERT_TRUE(terminal.shows(u"4 拒绝并说明："_s));
        terminal.type(answers ? "1\n" : "\x03");
        // The prompt may stand there before this; it does after it.
        ASSERT_TRUE(terminal.shows(answers ? u"told: accept"_s : u"told: decline"_s));
        ASSERT_TRUE(terminal.shows(u"你：shout dra"_s));
        terminal.type("ft\n");
        ASSERT_TRUE(terminal.shows(u"SHOUT DRAFT"_s));
        ASSERT_TRUE(terminal.shows(u"你："_s));
    }
    terminal.type("tell\n");
    ASSERT_TRUE(terminal.shows(u"hello"_s));
    ASSERT_TRUE(terminal.shows(u"你："_s));
    terminal.type("shout 中文");
    ASSERT_TRUE(terminal.shows(u"shout 中文"_s));
    ASSERT_TRUE(giveWord());
    // In one piece, where the prompt stood.
    ASSERT_TRUE(terminal.shows(u"\r\x1b[Jlate words\r\n"_s));
    ASSERT_TRUE(terminal.shows(u"你：shout 中文"_s));
    terminal.type("!\n");
    ASSERT_TRUE(terminal.shows(u"SHOUT 中文!"_s));
    ASSERT_TRUE(terminal.shows(u"你："_s));
    terminal.type("change\n");
    ASSERT_TRUE(terminal.shows(u"4 拒绝并说明："_s));
    ASSERT_TRUE(giveWord());
    ASSERT_TRUE(terminal.shows(u"这个问题已经不用回答了。"_s));
    ASSERT_TRUE(terminal.shows(u"never mind"_s));
    ASSERT_TRUE(terminal.shows(u"你："_s));
    terminal.type("\x04");
    EXPECT_EQ(code(program), 0);
}

/// What is said as a turn ends begins another one, which is waited for.
TEST_F(DevCommandTest, ATurnThatEndsAsItIsJoined) {
    QProcess program;
    QByteArray out;
    const auto says = [&](const QByteArray &text) {
        return eventually([&] { return (out += program.readAllStandardOutput()).contains(text); }, 30'000);
    };
    start(program, {u"--jsonl"_s});
    program.write("{\"send\":\"cross\"}\n");
    ASSERT_TRUE(says("thinking"));
    program.write("{\"send\":\"linger\"}\n");
    program.closeWriteChannel();
    ASSERT_TRUE(says("turnCompleted"));
    ASSERT_TRUE(giveWord());
    EXPECT_EQ(code(program), 0);
    EXPECT_THAT((out + program.readAllStandardOutput()).toStdString(), HasSubstr("at last"));
}

TEST_F(DevCommandTest, AnAnswerToAQuestionThatIsGone) {
    QProcess program;
    QByteArray out;
    const auto says = [&](const QByteArray &text) {
        return eventually([&] { return (out += program.readAllStandardOutput()).contains(text); }, 30'000);
    };
    start(program, {u"--jsonl"_s});
    program.write("{\"send\":\"change\"}\n");
    ASSERT_TRUE(says("permissionRequest"));
    ASSERT_TRUE(giveWord());
    ASSERT_TRUE(says("never mind"));
    program.write("{\"respond\":{\"requestId\":\"0\",\"decision\":\"allowOnce\"}}\n");
    ASSERT_TRUE(says("\"type\":\"error\""));
    program.closeWriteChannel();
    EXPECT_EQ(code(program), 0);
}

TEST_F(DevCommandTest, ALineThatDoesNotEndIsShownInPieces) {
    const auto seen = run({u"print"_s});
    EXPECT_GE(QByteArray::fromStdString(seen.err).count("│ "), 7);
    EXPECT_THAT(seen.err, HasSubstr("the end"));
    EXPECT_THAT(seen.err, ::testing::Not(HasSubstr("全部输出")));
}

/// Somebody who takes nothing of what is said, or who goes in the middle of it.
TEST_F(DevCommandTest, ReadersWhoStallOrGo) {
    for (const bool goes : {false, true}) {
        SCOPED_TRACE(goes);
        const QString name = m_home.filePath(goes ? u"goes"_s : u"stalls"_s);
        ASSERT_EQ(::mkfifo(name.toLocal8Bit().constData(), 0600), 0);
        const int reader = ::open(name.toLocal8Bit().constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        ASSERT_GE(reader, 0);
        QProcess program;
        program.setStandardOutputFile(name);
        start(program, {u"--jsonl"_s, u"flood"_s});
        EXPECT_TRUE(eventually(
            [&] {
                int waiting = 0;
                return QFile::exists(m_home.filePath(u"flooded"_s)) && ::ioctl(reader, FIONREAD, &waiting) == 0 &&
                       waiting > 32 * 1024;
            },
            30'000));
        if (goes)
            ::close(reader);
        else
            program.terminate();
        EXPECT_EQ(code(program), 130);
        if (!goes)
            ::close(reader);
    }
}

TEST_F(DevCommandTest, NothingOutlivesWhatNeverBegan) {
    const QByteArray stay = "trap '' TERM; echo $$ > " + m_home.path().toLocal8Bit() + "/pid;";
    // Nobody is signed in, and the server that said so does not leave by itself.
    replaceCodex("case $1 in --version) echo 1;; login) echo Not logged in;; app-server) " + stay +
                 R"(
        while read line; do case $line in *account/read*) echo '{"id":2,"result":{"requiresOpenaiAuth":true}}';; esac; done
        while :; do /bin/sleep 1000; done;; esac)");
    EXPECT_EQ(run({u"hello"_s}).code, 3);
    ASSERT_GT(child(), 0);
    EXPECT_EQ(::kill(child(), 0), -1);

    // A signal while the tool is looked for.
    replaceCodex(stay + "while :; do /bin/sleep 1000; done");
    for (const bool doctor : {false, true}) {
        SCOPED_TRACE(doctor);
        QFile::remove(m_home.filePath(u"pid"_s));
        QProcess program;
        doctor ? startLocal(program, {u"doctor"_s}) : start(program, {u"hello"_s});
        ASSERT_TRUE(eventually([&] { return child() > 0; }, 30'000));
        program.terminate();
        EXPECT_EQ(code(program), 130) << program.readAllStandardError().toStdString();
        EXPECT_EQ(::kill(child(), 0), -1);
        EXPECT_EQ(program.readAllStandardOutput(), QByteArray());
    }
}

TEST(DevCommandLineTest, CommandsBehindDev) {
    using Command = CommandLine::Command;
    const auto parsed = [](std::vector<const char *> words) {
        words.insert(words.begin(), "lumenpair");
        const auto line = CommandLine::parse(int(words.size()), words.data());
        return line ? std::optional(line->command) : std::nullopt;
    };
    EXPECT_EQ(parsed({"dev", "git", "status"}), Command::DevGit);
    EXPECT_EQ(parsed({"--profile", "dev", "dev", "git", "status"}), Command::DevGit);
    EXPECT_EQ(parsed({"--profile", "dev", "dev", "--engine", "codex", "git", "status"}), Command::Dev);
    EXPECT_EQ(parsed({"--sandbox", "chat", "dev", "git"}), Command::Chat);
}

TEST(DevQuestionTextTest, WhatIsAskedFor) {
    struct Row {
        QString tool, input;
        std::string shown;
    };
    const QString session = u"（选 2 的话，这次会话里所有以「%1」开头的命令都会放行，高风险的除外）"_s;
    for (
        const auto &[tool, input, shown] : {
            Row{u"T"_s, uR"({"command":"a\u0007b\u202ec","description":"why","timeout":5})"_s,
                "a␇b<U+202e>c\n其他：{\"timeout\":5}\n它说的理由：why"},
            Row{u"T"_s, uR"({"file_path":"/f","old_string":"a\nb","new_string":"c\n"})"_s,
                "S\n--- /f\n+++ /f\n@@\n-a\n-b\n+c"},
            Row{u"T"_s, uR"({"file_path":"/f","content":"x\ny\n"})"_s, "S\n--- /f\n+++ /f\n+x\n+y"},
            Row{u"T"_s,
                uR"({"changes":[{"path":"a","kind":{"type":"add"},"diff":"x\n"},{"path":"b","kind":{"type":"update"},"diff":"@@ -1 +1 @@\n-x\n+y\n目录：/\n"}]})"_s,
                "S\n--- /dev/null\n+++ a\n+x\n--- b\n+++ b\n@@ -1 +1 @@\n-x\n+y\n 目录：/"},
            Row{u"T"_s, uR"({"server":"s","arguments":{"q":1}})"_s, "S\n{\"server\":\"s\",\"arguments\":{\"q\":1}}"},
            // Nothing is left out, wherever it is not expected.
            Row{u"T"_s, uR"({"command":"ls","content":"x","new_string":"y","reason":"r","description":"d"})"_s,
                "ls\n其他：{\"content\":\"x\",\"new_string\":\"y\"}\n它说的理由：r\n它说的理由：d"},
            Row{u"T"_s, uR"({"file_path":"/f","old_string":"a"})"_s, "S\n--- /f\n+++ /f\n@@\n-a"},
            Row{u"T"_s, uR"({"file_path":"/f","edits":[{"old_string":"a","new_string":"b","replace_all":true}]})"_s,
                "S\n--- /f\n+++ /f\n@@ {\"replace_all\":true}\n-a\n+b"},
            // Nor does any of it pass for a line of ours, or hide.
            Row{u"T"_s, uR"({"command":"ls\n目录：/safe","cwd":"/x","reason":"r\n目录：/safe"})"_s,
                "ls\n  目录：/safe\n目录：/x\n它说的理由：r\n  目录：/safe"},
            Row{u"T"_s, uR"({"command":"\u00ad\u034f\u061c\u180e\u2028\udb40\udc41é好"})"_s,
                "<U+00ad><U+034f><U+061c><U+180e><U+2028><U+e0041>é好"},
            Row{u"bash"_s, uR"({"command":"cd build && make"})"_s,
                "cd build && make\n" + session.arg(u"cd"_s).toStdString()},
        }) {
        const auto text =
            DevQuestionText::of({.id = {}, .tool = tool, .summary = u"S"_s, .input = input, .suggestions = {}}, u"E"_s);
        EXPECT_EQ(text.section(u'\n', 1).toStdString(), shown);
    }
}

TEST(DevControlTest, LinesThatChangeNothing) {
    for (const QByteArray line :
         {"", "x", "[]", "{}", "null", R"({"send":"a","stop":true})", R"({"send":"a","more":1})", R"({"stop":false})",
          R"({"setMode":"fast"})", R"({"respond":{"requestId":"1"}})",
          R"({"respond":{"requestId":1,"decision":"deny"}})"})
        EXPECT_FALSE(DevControl::parse(line).has_value()) << line.toStdString();
    const auto answer = DevControl::parse(R"({"respond":{"requestId":"1","decision":"deny","reason":"no"}})");
    ASSERT_TRUE(answer.has_value());
    EXPECT_EQ(std::get<DevControl::Respond>(answer->what).decision, DevPermissionDecision::deny(u"no"_s));
}

} // namespace lmp
