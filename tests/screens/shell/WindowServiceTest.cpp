#include "WindowFixture.h"

#include "core/CapabilityStore.h"

#include <QGuiApplication>

namespace lmp {

using namespace Qt::StringLiterals;

/// What goes between the window and its service without anybody waiting for it.
class WindowServiceTest : public WindowFixture {};

TEST_F(WindowServiceTest, AFailureAtTheStartIsNotTheLastWord) {
    signInBefore();
    fault(R"({"route":"/app/capabilities","times":1,"status":503})");
    {
        WindowDriver window(options());
        ASSERT_TRUE(window.enterShell());
        EXPECT_TRUE(eventually([&] { return window.scene().capabilities()->version() > 0; })) << "who came in asks";
        ASSERT_TRUE(window.quits());
    }
    signInBefore();
    fault(R"({"route":"/app/capabilities","times":-1,"status":503})");
    WindowDriver window(options());
    ASSERT_TRUE(window.enterShell());
    window.scene().navigation()->openSection(WindowNavigation::Section::Features);
    ASSERT_TRUE(window.shows(u"还没有从服务读到功能清单"_s));
    ASSERT_TRUE(eventually([&] { return !window.scene().capabilities()->asking(); }));
    fault({});
    ASSERT_TRUE(window.click(u"再读一次"_s));
    EXPECT_TRUE(window.shows(u"语音房 · 不可用"_s));
    EXPECT_TRUE(window.hides(u"还没有从服务读到功能清单"_s));
}

TEST_F(WindowServiceTest, WhoLooksAtTheSettingsAsks) {
    signInBefore();
    fault(R"({"route":"/app/capabilities","times":2,"status":503})");
    WindowDriver window(options());
    ASSERT_TRUE(window.enterShell());
    ASSERT_TRUE(eventually([&] { return !window.scene().capabilities()->asking(); }));
    ASSERT_EQ(window.scene().capabilities()->version(), 0);
    window.scene().navigation()->openSection(WindowNavigation::Section::Features);
    EXPECT_TRUE(window.shows(u"语音房 · 不可用"_s));
}

TEST_F(WindowServiceTest, WhatHappenedIsToldWhenNobodyLooksAnyMore) {
    signInBefore();
    WindowDriver window(options());
    ASSERT_TRUE(window.enterShell());
    Telemetry *telemetry = window.program().application().telemetry();
    ASSERT_TRUE(eventually([&] { return !telemetry->isFlushing(); }));
    telemetry->record(u"stability.client.error"_s, {u"client"_s, u"c"_s});
    ASSERT_FALSE(telemetry->queue().isEmpty());
    Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationInactive);
    EXPECT_TRUE(eventually([&] { return telemetry->queue().isEmpty(); }));
}

} // namespace lmp
