#include "dev/codex/CodexEngine.h"

#include "dev/AgentScene.h"
#include "dev/FakeAgent.h"
#include "support/Await.h"

#include <gmock/gmock.h>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace {

using Act = AgentScene::Act;
using Seen = AgentScene::Seen;
using Reaction = AgentScene::Reaction;

const QStringList turnEnds = {u"done"_s, u"interrupted"_s, u"failed"_s};

DevEngine::Handle codex(const QString &program) {
    return DevEngine::make<CodexEngine>(program, CodexEngine::Limits());
}

constexpr auto greeting = R"({"in":1}
{"out":{"id":1,"result":{}}}
{"in":1}
{"in":1}
{"out":{"id":2,"result":{"account":{"type":"apiKey"},"requiresOpenaiAuth":true}}}
{"in":1}
)";
constexpr auto thread = R"({"out":{"id":3,"result":{"thread":{"id":"t"},"model":"m"}}}
{"in":1}
{"out":{"id":4,"result":{"turn":{"id":"u"}}}}
)";
constexpr auto done =
    R"({"out":{"method":"turn/completed","params":{"threadId":"t","turn":{"id":"u","status":"completed"}}}}
)";
const std::string begun = "session t m\nnotice Codex 线程已建：模型 m\n";

} // namespace

class CodexEngineTest : public ::testing::Test {
protected:
    static Seen played(AgentScene scene) {
        scene.turnEnds = turnEnds;
        return scene.play(&codex);
    }
    static Seen twice(AgentScene scene, const std::string &expected, int skipped = 0) {
        scene.turnEnds = turnEnds;
        return scene.twice(&codex, expected, skipped);
    }
};

TEST_F(CodexEngineTest, RecordedConversations) {
    struct Row {
        QString name;
        QList<Reaction> reactions;
        int turns;
        std::string events; ///< after the beginning
    };
    const auto asks = u"asks"_s;
    const auto once = DevPermissionDecision::allowOnce(), always = DevPermissionDecision::allowSession();
    const QList<Row> rows = {
        {u"allow"_s,
         {{asks, Act::respond, once}},
         1,
         "calls bash echo hello > made.txt; cat made.txt\nasks bash echo hello > made.txt; cat made.txt\nresult "
         "hello\n\n[exit 0]\ndelta Done. Tool s\ndelta aid: Chunk I\nsays Done. Tool said: Chunk ID: afb90c\nWall "
         "t\ndone 200+40"},
        {u"deny"_s,
         {{asks, Act::respond, DevPermissionDecision::deny()}},
         1,
         "calls bash echo hello > made.txt\nasks bash echo hello > made.txt\nerror 被拒绝，没有执行。\ndelta Done. "
         "Tool s\ndelta aid: exec_co\nsays Done. Tool said: exec_command failed: Cr\ndone 200+40"},
        {u"allow-session"_s,
         {{asks, Act::respond, always}, {u"done"_s, Act::send}},
         2,
         "calls bash touch made.txt\nasks bash touch made.txt\nresult \n[exit 0]\ndelta Done. Tool s\ndelta aid: Chunk "
         "I\nsays Done. Tool said: Chunk ID: 3e0361\nWall t\ndone 200+40\ncalls bash touch made.txt\nresult \n[exit "
         "0]\ndelta Done. Tool s\ndelta aid: Chunk I\nsays Done. Tool said: Chunk ID: 1c8af1\nWall t\ndone 400+80"},
        {u"write-edit"_s,
         {},
         1,
         "calls apply_patch /repo/a.txt\ncreate /repo/a.txt\nresult /repo/a.txt\ncalls apply_patch /repo/a.txt\nmodify "
         "/repo/a.txt\nresult /repo/a.txt\ndelta Done. Tool s\ndelta aid: Exit co\nsays Done. Tool said: Exit code: "
         "0\nWall time:\ndone 300+60"},
        {u"slow-command"_s,
         {},
         1,
         "calls bash for i in 1 2 3 4 5 6; do echo line $i; sleep 0.5; done\noutput line 2\n\noutput line 3\n\noutput "
         "line 4\n\noutput line 5\n\noutput line 6\n\nresult line 1\nline 2\nline 3\nline 4\nli\ndelta Done. Tool "
         "s\ndelta aid: Chunk I\nsays Done. Tool said: Chunk ID: 13da06\nWall t\ndone 200+40"},
        {u"failing-command"_s,
         {},
         1,
         "calls bash echo oops >&2; exit 3\nerror oops\n\n[exit 3]\ndelta Done. Tool s\ndelta aid: Chunk I\nsays Done. "
         "Tool said: Chunk ID: 6fba2d\nWall t\ndone 200+40"},
        {u"mcp"_s,
         {},
         1,
         "calls echo scripted · echo\nresult echo: hi\ncalls fail scripted · fail\nerror echo: no\ndelta Done. Tool "
         "s\ndelta aid: Script \nsays Done. Tool said: Script completed\nWall t\ndone 300+60"},
        {u"web-search"_s, {}, 1, "calls web_search weather\nresult \ndelta found\nsays found\ndone 100+20"},
        {u"permissions"_s,
         {{asks, Act::respond, once}},
         1,
         "asks request_permissions 要更多权限：scripted\ndelta Done. Tool s\ndelta aid: {\"permi\nsays Done. Tool "
         "said: {\"permissions\":{\"networ\ndone 200+40"},
        {u"interrupt"_s,
         {{u"delta"_s, Act::interrupt}, {u"interrupted"_s, Act::send}},
         2,
         "delta tick 1 \ndelta tick 2 \nsays tick 1 tick 2 \ninterrupted\ndelta Echo: After\nsays Echo: After\ndone "
         "100+20"},
        {u"interrupt-ask"_s,
         {{asks, Act::interrupt}, {u"interrupted"_s, Act::send}},
         2,
         "calls bash touch x\nasks bash touch x\nerror 已中断\ninterrupted\ndelta Echo: After\nsays Echo: After\ndone "
         "200+40"},
        {u"error"_s,
         {{u"failed"_s, Act::send}},
         2,
         "notice Reconnecting... 1/1\nfailed We’re currently experiencing high demand\ndelta Echo: After\nsays Echo: "
         "After\ndone 100+20"},
        {u"killed"_s, {}, 1, "delta tick 1 \ndelta tick 2 \nsays tick 1 tick 2 \nfailed codex app-server 中途退出："},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name.toStdString());
        twice({.recording = FakeAgent::recording(u"codex/"_s + row.name),
               .mode = row.name == "slow-command"_L1 ? DevMode::full : DevMode::acceptEdits,
               .reactions = row.reactions,
               .turns = row.turns},
              row.events, 2);
    }
}

/// Nothing that Codex writes ends a session but its own end.
TEST_F(CodexEngineTest, OutputThatIsBroken) {
    const QByteArray start = QByteArray(greeting) + thread;
    for (
        const auto &[steps, events] : {
            std::pair<QByteArray, std::string>{
                R"({"raw":"garbage\n\n\u0000\n[[[[\n{\"id\":99,\"result\":{}}\n{\"method\":\"item/sta"}
{"raw":"rted\"}\n{\"method\":\"item/completed\",\"params\":{\"item\":{\"type\":\"agentMessage\",\"id\":\"a\",\"te"}
{"raw":"xt\":\"half\"}}}\n"}
)" + QByteArray(done),
                "says half\ndone -1+-1"},
            {R"({"raw":"{\"method\":\"item/completed\",\"params\":{\"item\":{\"type\":\"agentMessage\",\"id\":\"a\",\"text\":\""}
{"raw":"0123456789","times":1000000}
{"raw":"\"}}}\n"}
)" + QByteArray(done),
             "says 0123456789012345678901234567890123456789\ndone -1+-1"},
            // It dies with a call open and something to say.
            {R"({"out":{"method":"item/started","params":{"item":{"type":"commandExecution","id":"c","command":"make"}}}}
{"err":"\u001b[31mout of luck\u001b[0m"}
{"exit":1}
)",
             "calls bash make\nerror 已中断\nfailed codex app-server 中途退出：out of luck"},
            // A command goes on after its turn; one that Codex reported without a beginning has one all the same.
            {R"({"out":{"method":"item/started","params":{"item":{"type":"commandExecution","id":"c","command":"make"}}}}
)" + QByteArray(done) +
                 R"({"out":{"method":"item/commandExecution/outputDelta","params":{"itemId":"c","delta":"x"}}}
{"out":{"method":"item/completed","params":{"item":{"type":"commandExecution","id":"c","status":"failed","exitCode":2}}}}
{"out":{"method":"item/completed","params":{"item":{"type":"webSearch","id":"w","query":"q"}}}}
{"exit":0}
)",
             "calls bash make\ndone -1+-1\noutput x\nerror \n[exit 2]\ncalls web_search q\nresult \n"
             "failed codex app-server 退出了："},
            // One that has closed its output is ended, since nothing more can come from it.
            {QByteArray(done) + "{\"close\":1}\n", "done -1+-1\nfailed codex app-server 退出了："},
        }) {
        const bool goesOn = events.find("退出了") != std::string::npos;
        twice({.recording = start + steps, .turns = goesOn ? 9 : 1}, begun + events);
    }
}

/// Also of what came together with the answer that began it.
TEST_F(CodexEngineTest, TheStreamBeginsWithItsSession) {
    const QByteArray together =
        R"({"raw":"{\"id\":3,\"result\":{\"thread\":{\"id\":\"t\"},\"model\":\"m\"}}\n{\"method\":\"error\",\"params\":{\"error\":{\"message\":\"early\"}}}\n"}
{"in":1}
{"out":{"id":4,"result":{"turn":{"id":"u"}}}}
)";
    twice({.recording = greeting + together + done, .turns = 2}, begun + "failed early\ndone -1+-1");
}

TEST_F(CodexEngineTest, StartsThatFail) {
    const QByteArray hello = R"({"in":1}
{"out":{"id":1,"result":{}}}
{"in":1}
{"in":1}
)";
    for (const auto &[steps, message] : {
             std::pair<QByteArray, std::string>{
                 hello + R"({"out":{"id":2,"result":{"account":null,"requiresOpenaiAuth":true}}})",
                 "Codex 还没登录：在终端里运行 codex login，用你的 ChatGPT 账号登录后再试。Lumenpair 不会读你的凭据。"},
             {hello + R"({"out":{"id":2,"error":{"code":-32600,"message":"no account"}}})", "no account"},
             {QByteArray(greeting) + R"({"out":{"id":3,"error":{"message":"no rollout found"}}})", "no rollout found"},
             {R"({"err":"bad flag"}
{"exit":2}
)",
              "codex app-server 退出了：bad flag"},
         })
        twice({.recording = steps}, message);

    const FakeAgent mute("{\"in\":1}\n");
    const auto waiting = DevEngine::make<CodexEngine>(mute.program(), CodexEngine::Limits{.start = 50ms});
    EXPECT_EQ(await(waiting->start({.cwd = QUrl::fromLocalFile(mute.folder())})).error().message,
              u"等了 1 秒没有回应"_s);
    const auto missing = DevEngine::make<CodexEngine>(u"no-such-agent"_s, CodexEngine::Limits());
    EXPECT_EQ(await(missing->start({.cwd = QUrl::fromLocalFile(u"/"_s)})).error(),
              DevEngineFailure(DevEngineError::notInstalled(u"no-such-agent"_s)));
    EXPECT_EQ(await(missing->send(u"go"_s)).error().message, u"线程还没建好"_s);
}

/// What is asked, of whom, and what Codex is told.
TEST_F(CodexEngineTest, Questions) {
    const QByteArray command = R"({"out":{"method":"item/commandExecution/requestApproval","id":0,"params":)";
    const QByteArray change =
        R"({"out":{"method":"item/started","params":{"item":{"type":"fileChange","id":"f","changes":[{"path":"a.txt","kind":{"type":"add"},"diff":"x"}]}}}}
{"out":{"method":"item/fileChange/requestApproval","id":0,"params":{"itemId":"f","grantRoot":)";
    const QByteArray more =
        R"({"out":{"method":"item/permissions/requestApproval","id":"p","params":{"permissions":{"network":{"enabled":true}},"reason":"why"}}})";
    const QByteArray mcp =
        R"({"out":{"method":"mcpServer/elicitation/request","id":0,"params":{"serverName":"s","message":"May I?","_meta":{"codex_approval_kind":"mcp_tool_call","tool_name":"%","tool_params":{"path":".ssh/x"}}}}})";
    const auto named = [&mcp](const char *tool) {
        return QByteArray(mcp).replace('%', tool);
    };
    const auto once = DevPermissionDecision::allowOnce(), always = DevPermissionDecision::allowSession(),
               deny = DevPermissionDecision::deny();
    const std::string onlyRead = "notice 当前是只读档位，不能改文件。用户切到「编辑自动」或「全自动」后再试。\n",
                      call = "calls apply_patch a.txt\n";
    struct Row {
        QByteArray request;
        DevMode mode;
        std::optional<DevPermissionDecision> decision; ///< none: it must not be asked
        std::string events, answer;
    };
    for (const Row &row : {
             Row{command + R"({"command":"/bin/bash -lc 'ls -l'"}}})",
                 DevMode::full,
                 {},
                 "",
                 R"({"decision":"accept"})"},
             Row{command + R"({"command":"/bin/bash -lc 'git push'"}}})", DevMode::full, deny, "asks bash git push\n",
                 R"({"decision":"decline"})"},
             // The model chose where it runs, so that the name of the file alone tells little.
             Row{command + R"({"command":"cat config","cwd":"/home/u/.ssh"}}})", DevMode::full, deny,
                 "asks bash cat config\n", R"({"decision":"decline"})"},
             Row{command + R"({"command":"cat shadow","cwd":"/etc"}}})", DevMode::full, deny, "asks bash cat shadow\n",
                 R"({"decision":"decline"})"},
             Row{command + R"({"command":"cat shadow","cwd":"/home/u/app"}}})",
                 DevMode::full,
                 {},
                 "",
                 R"({"decision":"accept"})"},
             Row{command + R"({"command":"ls"}}})",
                 DevMode::readOnly,
                 {},
                 "notice 当前是只读档位，不能跑命令。用户切到「编辑自动」或「全自动」后再试。\n",
                 R"({"decision":"decline"})"},
             Row{command + R"({"kind":"network","reason":"host"}}})", DevMode::full, once, "asks bash host\n",
                 R"({"decision":"accept"})"},
             Row{command + R"([1]}})", DevMode::full, deny, "asks bash Codex 没说要做什么\n",
                 R"({"decision":"decline"})"},
             Row{change + "null}}}", DevMode::acceptEdits, {}, call, R"({"decision":"accept"})"},
             Row{change + R"("/etc"}}})", DevMode::full, always, call + "asks apply_patch 要在仓库外写文件：/etc\n",
                 R"({"decision":"acceptForSession"})"},
             Row{change + R"(".ssh"}}})", DevMode::full, deny, call + "asks apply_patch a.txt\n",
                 R"({"decision":"decline"})"},
             Row{change + R"("/etc"}}})", DevMode::readOnly, {}, call + onlyRead, R"({"decision":"decline"})"},
             Row{more, DevMode::full, always, "asks request_permissions 要更多权限：why\n",
                 R"({"decision":"acceptForSession","permissions":{"network":{"enabled":true}},"scope":"session"})"},
             Row{more, DevMode::acceptEdits, deny, "asks request_permissions 要更多权限：why\n",
                 R"({"decision":"decline","permissions":{},"scope":"turn"})"},
             Row{more, DevMode::readOnly, {}, onlyRead, R"({"decision":"decline","permissions":{},"scope":"turn"})"},
             Row{named("echo"), DevMode::full, always, "asks echo May I?\n",
                 R"({"action":"accept","content":{},"_meta":{"persist":"session"}})"},
             Row{named("echo").replace(".ssh/x", "x"), DevMode::readOnly, {}, onlyRead, R"({"action":"decline"})"},
             // A server may call its tool what it likes.
             Row{named("Read").replace(".ssh/x", "x"), DevMode::readOnly, {}, onlyRead, R"({"action":"decline"})"},
         }) {
        SCOPED_TRACE(row.request.toStdString() + " " + std::to_string(int(row.mode)));
        AgentScene scene{.recording = QByteArray(greeting) + thread + row.request + "\n{\"in\":1}\n" + done,
                         .mode = row.mode};
        if (row.decision)
            scene.reactions = {{u"asks"_s, Act::respond, *row.decision}};
        const auto seen = played(scene);
        EXPECT_EQ(seen.events, begun + row.events + "done -1+-1");
        const QString id = row.request.contains("\"id\":0") ? u"0"_s : u"\"p\""_s;
        EXPECT_EQ(seen.received.last().toStdString(),
                  "{\"id\":" + id.toStdString() + ",\"result\":" + row.answer + "}");
    }
}

TEST_F(CodexEngineTest, WhatIsSaidToCodex) {
    // A question that Codex takes back is not answered any more; one that nobody here knows is answered all the same.
    const QByteArray withdrawn =
        R"({"out":{"method":"item/commandExecution/requestApproval","id":1,"params":{"command":"git push"}}}
{"out":{"method":"serverRequest/resolved","params":{"requestId":1}}}
{"out":{"method":"item/tool/call","id":7}}
{"in":1}
)";
    const auto seen =
        twice({.recording = QByteArray(greeting) + thread + withdrawn + done,
               .mode = DevMode::full,
               .resume = u"t"_s,
               .reactions = {{u"notice Codex 发"_s, Act::respond, DevPermissionDecision::allowOnce(), u"1"_s}}},
              begun + "asks bash git push\nnotice Codex 发来了工作台还不支持的请求：item/tool/call\n"
                      "done -1+-1");
    EXPECT_EQ(seen.waited, QList<bool>{false});
    EXPECT_EQ(seen.withdrawn, QStringList{u"1"_s});
    ASSERT_EQ(seen.received.size(), 7);
    EXPECT_EQ(seen.received.at(0), u"[\"app-server\"]"_s);
    EXPECT_THAT(seen.received.at(1).toStdString(),
                StartsWith(R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{"clientInfo":)"));
    EXPECT_EQ(seen.received.at(2), uR"({"method":"initialized","params":{}})"_s);
    EXPECT_EQ(seen.received.at(3), uR"({"jsonrpc":"2.0","id":2,"method":"account/read","params":{}})"_s);
    EXPECT_THAT(seen.received.at(4).toStdString(),
                HasSubstr(R"("method":"thread/resume","params":{"threadId":"t","excludeTurns":true,)"));
    EXPECT_THAT(seen.received.at(4).toStdString(),
                HasSubstr(R"("approvalPolicy":"never","sandbox":"workspace-write","approvalsReviewer":"user"})"));
    EXPECT_EQ(seen.received.at(6),
              uR"({"id":7,"error":{"code":-32601,"message":"unsupported by Lumenpair workbench"}})"_s);
}

TEST_F(CodexEngineTest, ADenialIsExplainedOnce) {
    const QByteArray asked =
        R"({"out":{"method":"item/commandExecution/requestApproval","id":0,"params":{"command":"make"}}}
{"in":1}
)";
    const QString again = uR"({"in":1}
{"out":{"id":%1,"result":{"turn":{"id":"v%1"}}}}
{"out":{"method":"turn/completed","params":{"turn":{"id":"v%1","status":"completed"}}}}
)"_s;
    const auto seen = twice(
        {.recording = QByteArray(greeting) + thread + asked + done + again.arg(5).toUtf8() + again.arg(6).toUtf8(),
         .reactions = {{u"asks"_s, Act::respond, DevPermissionDecision::deny(u"先写测试"_s)},
                       {u"done"_s, Act::send},
                       {u"done"_s, Act::send}},
         .turns = 3},
        begun + "asks bash make\ndone -1+-1\ndone -1+-1\ndone -1+-1");
    ASSERT_EQ(seen.received.size(), 9);
    EXPECT_TRUE(seen.received.at(7).contains(u"\"text\":\"上一次我拒绝了你的操作，原因：先写测试\\nAfter\""_s));
    EXPECT_TRUE(seen.received.at(8).contains(u"\"text\":\"After\""_s));
}

} // namespace lmp
