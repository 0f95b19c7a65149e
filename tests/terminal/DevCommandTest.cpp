#include "terminal/DevControl.h"
#include "terminal/DevQuestionText.h"

#include "support/Await.h"
#include "support/PseudoTerminal.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

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
        ASSERT_TRUE(
            QFile::link(QStringLiteral(LMP_TEST_SOURCES "/agents/scripted_codex.py"), m_home.filePath(u"codex"_s)));
    }
    void start(QProcess &program, const QStringList &arguments) const {
        auto env = QProcessEnvironment::systemEnvironment();
        env.insert(u"HOME"_s, m_home.path());
        env.insert(u"PATH"_s, m_home.path() + u':' + env.value(u"PATH"_s));
        env.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
        env.insert(u"TERM"_s, u"xterm"_s);
        env.insert(u"SHELL"_s, u"/bin/sh"_s);
        program.setProcessEnvironment(env);
        program.start(QCoreApplication::applicationDirPath() + u"/lumenpair-terminal"_s,
                      QStringList{u"dev"_s, u"--engine"_s, u"codex"_s, u"--repo"_s, m_home.path()} + arguments);
    }
    static int code(QProcess &program) {
        EXPECT_TRUE(eventually([&] { return program.state() == QProcess::NotRunning; }, 60'000));
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
