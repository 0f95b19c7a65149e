#include "dev/DevAuthFlow.h"
#include "dev/Scripts.h"
#include "support/ManualClock.h"

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Phase = DevAuthFlow::Phase;

/// A home whose tools are scripts, and a flow that notes what it goes through.
class AuthBench : public Scripts {
public:
    AuthBench() {
        QDir(folder()).mkpath(u".local/bin"_s);
        qputenv("HOME", folder().toUtf8());
        QObject::connect(&flow, &DevAuthFlow::changed, &flow,
                         [this](DevEngineKind kind) { phases.append(flow.phase(kind)); });
    }
    ~AuthBench() { qputenv("HOME", m_home); }

    /// A tool that notes its lines and answers the one that holds `to` with `answer`.
    void install(const QString &tool, const QList<std::pair<QByteArray, QByteArray>> &answers,
                 const QByteArray &otherwise = ":") {
        QByteArray text = "#!/bin/sh\necho $$ >pid\necho 'no json'\necho '{\"type\":\"system\"}'\n"
                          "while read -r line; do printf '%s\\n' \"$line\" >>heard\ncase $line in\n";
        for (const auto &[to, answer] : answers)
            text += "*'" + to + "'*) " + answer + ";;\n";
        write(u".local/bin/"_s + tool, text + "*) " + otherwise + ";; esac; done\n");
    }
    Phase runToEnd(DevEngineKind kind) {
        flow.start(kind);
        EXPECT_TRUE(eventually([this, kind] {
            const auto now = flow.phase(kind).kind;
            return now == Phase::Kind::done || now == Phase::Kind::failed;
        }));
        EXPECT_TRUE(eventually([this] { return !runs(read(u"pid"_s).trimmed().toLongLong()); }));
        return flow.phase(kind);
    }

    ManualClock clock;
    QList<DevEngineKind> probed;
    QList<Phase> phases;
    DevAuthFlow flow{clock, [this](DevEngineKind kind) {
                         probed.append(kind);
                     }};

private:
    QByteArray m_home = qgetenv("HOME");
};

QByteArray claudeReply(const QByteArray &id, const QByteArray &rest) {
    return R"(echo '{"response":{"request_id":")" + id + R"(",)" + rest + R"(},"type":"control_response"}')";
}
const QByteArray claudeAddresses = claudeReply(
    "lmp-1",
    R"("subtype":"success","response":{"manualUrl":"https://m.invalid/","automaticUrl":"https://a.invalid/?x=1"})");
const QByteArray codexAddress =
    R"(echo '{"id":2,"result":{"type":"chatgpt","loginId":"L","authUrl":"https://c.invalid/"}}')";

Phase failed(const QString &message) {
    return {.kind = Phase::Kind::failed, .message = message};
}

TEST(DevAuthFlow, SignsIn) {
    AuthBench bench;
    bench.install(u"claude"_s,
                  {{"claude_authenticate", claudeAddresses},
                   {"claude_oauth_wait_for_completion", claudeReply("lmp-2", R"("subtype":"success","response":{})")}});
    bench.install(u"codex"_s, {{"account/login/start", codexAddress + R"(
        echo '{"method":"account/login/completed","params":{"loginId":"old","success":false,"error":"x"}}'
        echo '{"id":2,"method":"item/tool/call","params":{}}'
        echo '{"method":"account/login/completed","params":{"loginId":"L","success":true,"error":null}}')"}});
    struct {
        DevEngineKind kind;
        QString url;
        QByteArray heard;
    } const cases[] = {
        {DevEngineKind::claude, u"https://a.invalid/?x=1"_s,
         R"({"type":"control_request","request_id":"lmp-1","request":{"subtype":"claude_authenticate","loginWithClaudeAi":true}}
{"type":"control_request","request_id":"lmp-2","request":{"subtype":"claude_oauth_wait_for_completion"}}
)"},
        {DevEngineKind::codex, u"https://c.invalid/"_s,
         R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{"clientInfo":{"name":"lumenpair","title":"Lumenpair","version":"0.1.0"},"capabilities":{"experimentalApi":true,"optOutNotificationMethods":[]}}}
{"method":"initialized","params":{}}
{"jsonrpc":"2.0","id":2,"method":"account/login/start","params":{"type":"chatgpt"}}
)"}};
    for (int round = 0; round < 2; ++round) {
        for (const auto &[kind, url, heard] : cases) {
            bench.phases.clear();
            bench.probed.clear();
            QFile::remove(bench.path(u"heard"_s));
            EXPECT_EQ(bench.runToEnd(kind), Phase{.kind = Phase::Kind::done});
            EXPECT_EQ(bench.phases, (QList<Phase>{{.kind = Phase::Kind::starting},
                                                  {.kind = Phase::Kind::waiting, .url = url},
                                                  {.kind = Phase::Kind::done}}));
            EXPECT_EQ(bench.probed, QList<DevEngineKind>{kind});
            EXPECT_EQ(bench.read(u"heard"_s), heard);
        }
    }
    bench.flow.start(DevEngineKind::relay);
    EXPECT_EQ(bench.flow.phase(DevEngineKind::relay), Phase());
}

TEST(DevAuthFlow, SaysWhyItFailed) {
    using Answers = QList<std::pair<QByteArray, QByteArray>>;
    struct {
        DevEngineKind kind;
        Answers answers;
        QString message;
    } const cases[] = {
        {DevEngineKind::claude, Answers{{"authenticate", claudeReply("lmp-1", R"("subtype":"error","error":"x")")}},
         u"CLI 没有给出授权链接"_s},
        {DevEngineKind::claude,
         Answers{{"authenticate",
                  claudeReply("lmp-1", R"("subtype":"success","response":{"manualUrl":"file:///etc/passwd"})")}},
         u"CLI 没有给出授权链接"_s},
        {DevEngineKind::claude,
         Answers{{"authenticate", claudeAddresses},
                 {"wait", claudeReply("lmp-2", R"("subtype":"error","error":"denied")")}},
         u"登录没有完成：denied"_s},
        {DevEngineKind::claude, Answers{{"authenticate", "exit 1"}}, u"claude 进程退出了"_s},
        {DevEngineKind::codex, Answers{{"login/start", R"(echo '{"error":{"code":1},"id":2}')"}},
         u"codex 没有给出授权链接"_s},
        {DevEngineKind::codex,
         Answers{
             {"login/start",
              codexAddress +
                  R"(; echo '{"method":"account/login/completed","params":{"loginId":"L","success":false,"error":"refused"}}')"}},
         u"refused"_s},
        {DevEngineKind::codex, Answers{{"login/start", codexAddress + "; exit 0"}}, u"codex app-server 退出了"_s},
    };
    AuthBench bench;
    for (const auto &[kind, answers, message] : cases) {
        bench.install(kind == DevEngineKind::claude ? u"claude"_s : u"codex"_s, answers);
        bench.probed.clear();
        EXPECT_EQ(bench.runToEnd(kind), failed(message));
        EXPECT_EQ(bench.probed, QList<DevEngineKind>{kind});
    }
}

TEST(DevAuthFlow, WaitsOnlySoLong) {
    AuthBench bench;
    bench.install(u"claude"_s, {{"authenticate", claudeAddresses}});
    bench.install(u"codex"_s, {});
    const struct {
        DevEngineKind kind;
        Phase::Kind stuck;
        QString message;
    } cases[] = {
        {DevEngineKind::claude, Phase::Kind::waiting, u"等太久了（300 秒）——登录没走完"_s},
        {DevEngineKind::codex, Phase::Kind::starting, u"等太久了（5 分钟）——浏览器里没走完"_s},
    };
    for (const auto &[kind, stuck, message] : cases) {
        bench.flow.start(kind);
        ASSERT_TRUE(eventually([&] { return bench.flow.phase(kind).kind == stuck && bench.clock.sleepers() == 1; }));
        bench.flow.start(kind); // under way already
        bench.clock.advance(299s);
        settle();
        EXPECT_EQ(bench.flow.phase(kind).kind, stuck);
        bench.clock.advance(1s);
        ASSERT_TRUE(eventually([&] { return bench.flow.phase(kind).kind == Phase::Kind::failed; }));
        EXPECT_EQ(bench.flow.phase(kind).message, message);
    }
}

TEST(DevAuthFlow, MayBeCancelledAndForgotten) {
    AuthBench bench;
    bench.install(u"claude"_s, {{"authenticate", claudeAddresses}});
    const auto kind = DevEngineKind::claude;
    bench.flow.start(kind);
    bench.flow.cancel(kind); // while it is being started
    EXPECT_EQ(bench.flow.phase(kind), Phase());
    bench.flow.start(kind);
    ASSERT_TRUE(eventually([&] { return bench.flow.phase(kind).kind == Phase::Kind::waiting; }));
    bench.flow.cancel(kind);
    settle();
    EXPECT_EQ(bench.flow.phase(kind), Phase());
    EXPECT_TRUE(bench.probed.isEmpty());
    {
        DevAuthFlow brief(bench.clock, [](DevEngineKind) { ADD_FAILURE(); });
        brief.start(kind);
    }
    EXPECT_TRUE(eventually([] { return DevProcessRegistry::shared().liveCount() == 0; }));
    EXPECT_EQ(bench.clock.sleepers(), 0);
}

} // namespace

} // namespace lmp
