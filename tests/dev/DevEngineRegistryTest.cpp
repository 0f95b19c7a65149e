#include "dev/DevEngineRegistry.h"

#include "core/Later.h"

#include "support/Await.h"
#include "support/ManualClock.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;

using State = DevReadiness::State;

/// A home folder with tools of our own in the first place that is looked at.
class DevEngineRegistryTest : public ::testing::Test {
protected:
    DevEngineRegistryTest() { qputenv("HOME", QFile::encodeName(home.path())); }
    ~DevEngineRegistryTest() override { qputenv("HOME", before); }

    /// @param body of a shell script
    void install(const QString &name, const QByteArray &body) const {
        QDir().mkpath(home.filePath(u".local/bin"_s));
        QFile file(home.filePath(u".local/bin/"_s + name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + body);
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    DevReadiness probed(DevEngineKind kind) {
        DevEngineRegistry registry(clock, DevEngineRegistry::localProbes());
        await(registry.probe());
        return registry.readiness(kind);
    }

    const QByteArray before = qgetenv("HOME");
    const QTemporaryDir home;
    ManualClock clock;
};

TEST_F(DevEngineRegistryTest, WhatTheToolsSay) {
    const QByteArray version = "[ $1 = --version ] && echo '2.1.329 (Claude Code)' && exit 0\n";
    struct Row {
        DevEngineKind kind;
        QByteArray script;
        State state;
        QString line;
    };
    const auto claude = DevEngineKind::claude, codex = DevEngineKind::codex;
    const QString unreadable = u"装了，但读不到登录态"_s;
    for (const auto &[kind, script, state, line] : {
             Row{claude, version + R"(echo '{"loggedIn":true,"authMethod":"api_key"}')", State::ready, {}},
             Row{claude, version + R"(echo '{"loggedIn":false,"authMethod":"none"}'; exit 1)", State::loggedOut,
                 u"在终端里运行 claude，用你自己的账号完成登录；Lumenpair 不会读你的凭据。"_s},
             Row{claude, version + "echo 'unknown command' >&2; exit 1", State::unknown, unreadable},
             Row{claude, version + R"(echo '{"authMethod":"none"}')", State::unknown, unreadable},
             Row{claude, "exit 3", State::unknown, u"版本探测失败"_s},
             Row{codex, version + "echo 'Not logged in' >&2; exit 1", State::loggedOut,
                 u"在终端里运行 codex login，用你的 ChatGPT 账号完成登录；Lumenpair 不会读你的凭据。"_s},
             Row{codex, version + "echo 'Logged in using ChatGPT' >&2", State::ready, {}},
             Row{codex, version + "echo 'API key configured - ***' >&2", State::ready, {}},
             Row{codex, version + "echo 'config.toml is broken' >&2; exit 1", State::unknown, unreadable},
         }) {
        const auto name = kind == claude ? u"claude"_s : u"codex"_s;
        install(name, script);
        const auto readiness = probed(kind);
        EXPECT_EQ(readiness.state, state) << script.toStdString();
        EXPECT_EQ(readiness.line().value_or(QString()), line) << script.toStdString();
        EXPECT_EQ(readiness.path, home.filePath(u".local/bin/"_s + name));
        if (state != State::unknown)
            EXPECT_EQ(readiness.version, u"2.1.329 (Claude Code)"_s);
    }
    auto absent = DevProbe::claude();
    absent.name = u"no-such-agent"_s;
    const auto readiness = await(DevProbe::run(absent));
    EXPECT_EQ(readiness.state, State::missing);
    EXPECT_EQ(readiness.line(), absent.missingHint);
}

TEST_F(DevEngineRegistryTest, OnlyTheLastProbeCounts) {
    QList<DevReadiness> answers = {{.state = State::ready}, {.state = State::missing}};
    Later<bool> first;
    int asked = 0;
    const auto slow = [](Later<bool> gate, DevReadiness answer) -> QCoro::Task<DevReadiness> {
        co_await gate;
        co_return answer;
    };
    DevEngineRegistry registry(clock, {{DevEngineKind::claude, [&] {
                                            Later<bool> gate = first;
                                            if (asked++ > 0)
                                                (gate = Later<bool>()).resolve(true);
                                            return slow(gate, answers.takeFirst());
                                        }}});
    EXPECT_EQ(registry.readiness(DevEngineKind::claude).state, State::unknown);
    EXPECT_FALSE(registry.probedAt().has_value());
    auto stale = registry.probe();
    EXPECT_EQ(registry.readiness(DevEngineKind::claude).state, State::probing);
    await(registry.probe());
    first.resolve(true);
    await(std::move(stale));
    EXPECT_EQ(registry.readiness(DevEngineKind::claude).state, State::missing);
    EXPECT_EQ(registry.probedAt(), clock.now());
}

TEST_F(DevEngineRegistryTest, MayGoWhileItAsks) {
    const auto atOnce = []() -> QCoro::Task<DevReadiness> {
        co_return DevReadiness{.state = State::ready};
    };
    auto registry = std::make_unique<DevEngineRegistry>(
        clock, DevEngineRegistry::Probes{{DevEngineKind::claude, atOnce}, {DevEngineKind::codex, atOnce}});
    QObject::connect(registry.get(), &DevEngineRegistry::changed, registry.get(), [&registry] {
        if (registry->readiness(DevEngineKind::claude).state == State::ready)
            registry.reset();
    });
    await(registry->probe());
    EXPECT_FALSE(registry);
}

} // namespace lmp
