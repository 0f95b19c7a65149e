#include "dev/claude/ClaudeCodeEngine.h"

#include "dev/AgentScene.h"
#include "dev/DevProcessRegistry.h"
#include "dev/FakeAgent.h"
#include "support/Await.h"

#include <gmock/gmock.h>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Act = AgentScene::Act;
using Reaction = AgentScene::Reaction;
using Seen = AgentScene::Seen;

const QStringList turnEnds = {u"done"_s};

/// Steps for the agent that are in no recording.
AgentScene scripted(const QByteArray &steps) {
    return {.recording = steps, .turnEnds = turnEnds};
}

QCoro::Task<std::optional<DevEvent>> nextOf(Channel<DevEvent> events) {
    co_return co_await events.next();
}

AgentScene recorded(const QString &name) {
    return scripted(FakeAgent::recording(u"claude/"_s + name));
}

DevEngine::Handle claude(const QString &program) {
    return DevEngine::make<ClaudeCodeEngine>(program);
}

} // namespace

class ClaudeCodeEngineTest : public ::testing::Test {
protected:
    static Seen twice(const AgentScene &scene, const std::string &expected) { return scene.twice(&claude, expected); }
    static void TearDownTestSuite() {
        EXPECT_TRUE(eventually([] { return DevProcessRegistry::shared().liveCount() == 0; }));
    }
};

TEST_F(ClaudeCodeEngineTest, RecordedConversations) {
    struct Row {
        QString name;
        QList<Reaction> reactions;
        int turns;
        std::string events;
    };
    const auto asks = u"asks"_s, done = u"done"_s;
    const QList<Row> rows = {
        {u"allow"_s,
         {{asks, Act::respond, DevPermissionDecision::allowOnce()}},
         1,
         "session c78096e5 claude-opus-5-5\ncalls Bash echo hello > made.txt; cat made.txt\n"
         "asks Bash echo hello > made.txt; cat made.txt\nresult hello\nsays Done. Tool said: hello\ndone 200+40"},
        {u"allow-2.1.197"_s,
         {{asks, Act::respond, DevPermissionDecision::allowOnce()}},
         1,
         "session 3816b7b1 claude-opus-4-8[1m]\ncalls Bash echo hello > made.txt; cat made.txt\n"
         "asks Bash echo hello > made.txt; cat made.txt\nresult hello\nsays Done. Tool said: hello\ndone 200+40"},
        {u"deny"_s,
         {{asks, Act::respond, DevPermissionDecision::deny()}},
         1,
         "session 3673429b claude-opus-5-5\ncalls Bash echo hello > made.txt\nasks Bash echo hello > made.txt\n"
         "error Not now, says the test\nsays Done. Tool said: Not now, says the test\ndone 200+40"},
        // Allowed for the session: the second of the two does not ask.
        {u"parallel"_s,
         {{asks, Act::respond, DevPermissionDecision::allowSession()}},
         1,
         "session 9c52cf41 claude-opus-5-5\ncalls Bash touch a.txt\nasks Bash touch a.txt\ncalls Bash touch b.txt\n"
         "result (Bash completed with no output\nresult (Bash completed with no output\n"
         "says Done. Tool said: (Bash completed with no\ndone 200+40"},
        {u"write-edit"_s,
         {},
         1,
         "session a3d6bcfa claude-opus-5-5\ncalls Write /repo/a.txt\nresult File created successfully at: \n"
         "create /repo/a.txt\ncalls Edit /repo/a.txt\nresult The file /repo/a.txt has been \nmodify /repo/a.txt\n"
         "says Done. Tool said: The file /repo/a.txt ha\ndone 300+60"},
        {u"queued"_s,
         {{u"session"_s, Act::send}},
         2,
         "session e4b730d3 claude-opus-5-5\nsays tick 1 tick 2 tick 3 tick 4 tick 5 tick \ndone 100+20\n"
         "says Echo: Second\ndone 100+20"},
        {u"interrupt"_s,
         {{u"session"_s, Act::interrupt}, {done, Act::send}},
         2,
         "session f446f58a claude-opus-5-5\ninterrupted\nsays tick 1 tick 2 tick 3 tick 4 tick 5 tick \ndone 0+0\n"
         "says Echo: After\ndone 100+20"},
        {u"interrupt-ask"_s,
         {{asks, Act::interrupt}, {done, Act::send}},
         2,
         "session d777ede4 claude-opus-5-5\ncalls Bash touch x\nasks Bash touch x\ninterrupted\nerror 已中断\n"
         "done 100+20\nsays Echo: After\ndone 100+20"},
        {u"error"_s,
         {{done, Act::send}},
         2,
         "session 00ed0c96 claude-opus-5-5\nfailed API Error: 529 scripted failure 529. Thi\ndone 0+0\n"
         "says Echo: After\ndone 100+20"},
        {u"killed"_s, {}, 1, "session c404e0da claude-opus-5-5\nfailed claude 进程退出了"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name.toStdString());
        AgentScene scene = recorded(row.name);
        scene.reactions = row.reactions;
        scene.turns = row.turns;
        const auto seen = twice(scene, row.events);
        EXPECT_FALSE(seen.waited.contains(false));
        EXPECT_EQ(seen.withdrawn.size(), row.name == "interrupt-ask"_L1 ? 1 : 0);
        if (row.name == "allow-2.1.197"_L1)
            EXPECT_TRUE(seen.received.last().contains("updatedInput"_L1));
    }
}

TEST_F(ClaudeCodeEngineTest, ArgumentsAndResumption) {
    AgentScene scene = recorded(u"resume"_s);
    const std::string events = "session 5b55918e claude-opus-5-5\nsays Echo: Again\ndone 100+20";
    scene.resume = scene.model = QString();
    const QString usual =
        u"\"--print\", \"--input-format\", \"stream-json\", \"--output-format\", \"stream-json\", "
        "\"--verbose\", \"--permission-prompt-tool\", \"stdio\", \"--permission-mode\", \"default\""_s;
    EXPECT_EQ(twice(scene, events).received.first(), u'[' + usual + u']');
    scene.resume = u"-x"_s;
    scene.model = u"opus"_s;
    const auto received = twice(scene, events).received;
    EXPECT_EQ(received.first(), u'[' + usual + u", \"--model\", \"opus\", \"--resume=-x\"]"_s);
    EXPECT_EQ(received.at(1), u"{\"type\":\"user\",\"message\":{\"role\":\"user\",\"content\":\"go\"}}"_s);
}

/// Nothing that the tool writes ends a session but its own end.
TEST_F(ClaudeCodeEngineTest, OutputThatIsBroken) {
    const QByteArray end = R"({"raw":"{\"type\":\"result\",\"is_er"}
{"raw":"ror\":false,\"usage\":{\"input_tokens\":1,\"output_tokens\":2}}\r\n"}
)";
    struct Row {
        QByteArray steps;
        std::string events;
    };
    for (const auto &[steps, events] : {
             Row{R"({"in":1}
{"raw":"garbage\n\n\u0000\n[[[[\n{\"type\":\"assistant\",\"message\":{\"content\":[{\"type\":\"text\",\"te"}
{"raw":"xt\":\"half\"}]}}\n"}
)" + end,
                 "says half\ndone 1+2"},
             Row{R"({"in":1}
{"raw":"{\"type\":\"assistant\",\"message\":{\"content\":[{\"type\":\"text\",\"text\":\""}
{"raw":"0123456789","times":1000000}
{"raw":"\"}]}}\n"}
)" + end,
                 "says 0123456789012345678901234567890123456789\ndone 1+2"},
             // It dies with a call open and something to say.
             Row{R"({"in":1}
{"out":{"type":"assistant","message":{"content":[{"type":"tool_use","id":"t","name":"Bash","input":{"command":"make"}}]}}}
{"err":"\u001b[31mout of luck\u001b[0m"}
{"exit":1}
)",
                 "calls Bash make\nerror 已中断\nfailed claude 进程退出了：out of luck"},
         }) {
        twice(scripted(steps), events);
    }
}

TEST_F(ClaudeCodeEngineTest, WhatCannotBeDone) {
    const auto missing = DevEngine::make<ClaudeCodeEngine>(u"no-such-agent"_s);
    const auto failure = await(missing->start({.cwd = QUrl::fromLocalFile(u"/"_s)}));
    ASSERT_FALSE(failure.has_value());
    EXPECT_EQ(failure.error(), DevEngineFailure(DevEngineError::notInstalled(u"no-such-agent"_s)));
    EXPECT_EQ(await(missing->send(u"go"_s)).error().message, u"Claude 进程没在跑"_s);

    const FakeAgent agent("{}");
    const auto lost = DevEngine::make<ClaudeCodeEngine>(agent.program());
    EXPECT_TRUE(await(lost->start({.cwd = QUrl::fromLocalFile(u"/no/such/folder"_s)}))
                    .error()
                    .message.startsWith(u"起不来："_s));
}

/// A consumer that stalls holds the tool back, and neither an interruption nor the stop waits for it.
TEST_F(ClaudeCodeEngineTest, AStalledConsumer) {
    const FakeAgent agent(R"({"in":1}
{"raw":"{\"type\":\"assistant\",\"message\":{\"content\":[{\"type\":\"text\",\"text\":\"x\"}]}}\n","times":200000}
{"in":1}
)");
    const auto engine = DevEngine::make<ClaudeCodeEngine>(agent.program());
    const auto session = await(engine->start({.cwd = QUrl::fromLocalFile(agent.folder())}));
    ASSERT_TRUE(session.has_value());
    await(engine->send(u"go"_s));
    ASSERT_TRUE(await(nextOf(session->events)).has_value());
    await(engine->interrupt());
    int told = 1;
    bool interrupted = false;
    while (!interrupted) {
        const auto event = await(nextOf(session->events));
        ASSERT_TRUE(event.has_value());
        interrupted = std::holds_alternative<dev_event::Interrupted>(*event);
        ++told;
    }
    // It came in its place, behind what had been read before.
    EXPECT_LT(told, 12'000);
    await(engine->stop());
    while (session->events.tryNext()) {
    }
    EXPECT_TRUE(session->events.isOver());
}

} // namespace lmp
