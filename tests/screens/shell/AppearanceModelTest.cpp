#include "screens/shell/AppearanceModel.h"
#include "screens/shell/WindowLayout.h"
#include "screens/shell/WindowOptions.h"
#include "support/MemorySettings.h"

#include <QWindow>

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;

TEST(AppearanceModelTest, WhatWasKeptIsBoundedAndFollowed) {
    struct Case {
        QByteArray theme, scale, system;
        bool dark;
        qreal shown;
    };
    const std::vector<Case> cases{
        {"dark", "160", "light", true, 1.6},  {"light", "85", "dark", false, 0.85},
        {"system", "100", "dark", true, 1.0}, {"system", "115", "light", false, 1.15},
        {"blue", "9999", "dark", true, 1.0},  {"", "-3", "", false, 1.0},
    };
    for (const Case &kept : cases) {
        MemorySettings settings;
        settings.setValue(AppearanceModel::themeKey, kept.theme);
        settings.setValue(AppearanceModel::scaleKey, kept.scale);
        settings.setValue(AppearanceModel::systemKey, kept.system);
        const AppearanceModel appearance(settings);
        EXPECT_EQ(appearance.dark(), kept.dark) << kept.theme.constData();
        EXPECT_EQ(appearance.scale(), kept.shown) << kept.scale.constData();
    }
    MemorySettings settings;
    settings.full = true;
    AppearanceModel appearance(settings);
    appearance.setScale(1.4);
    EXPECT_EQ(appearance.scale(), 1.3);
    for (int step = 0; step < 9; ++step)
        appearance.larger();
    EXPECT_EQ(appearance.scale(), 1.6);
    appearance.setChoice(AppearanceModel::Choice::Dark);
    EXPECT_TRUE(appearance.dark());
}

TEST(WindowLayoutTest, TakesNothingThatFitsNoScreen) {
    struct Case {
        QByteArray kept;
        int width, sidebar;
    };
    for (const auto &[kept, width, sidebar] : std::vector<Case>{
             {"1300 800 300 1", 1300, 300}, {"-5 99999999 10 0", 480, 208}, {"1300 800", 1120, 248}, {"", 1120, 248}}) {
        MemorySettings settings;
        settings.setValue(u"lmp.window.layout.v1"_s, kept);
        const WindowLayout layout(settings);
        EXPECT_EQ(layout.windowWidth(), width) << kept.constData();
        EXPECT_EQ(layout.sidebarWidth(), sidebar) << kept.constData();
    }
}

TEST(WindowLayoutTest, AWindowThatFillsTheScreenComesBackSo) {
    MemorySettings settings;
    QWindow window;
    window.resize(1000, 700);
    WindowLayout(settings).keep(window);
    EXPECT_FALSE(WindowLayout(settings).maximized());
    window.resize(1920, 1080);
    window.setWindowStates(Qt::WindowMaximized);
    WindowLayout(settings).keep(window);
    const WindowLayout next(settings);
    EXPECT_TRUE(next.maximized());
    EXPECT_EQ(next.windowWidth(), 1000) << "and has its own size to go back to";
    window.setWindowStates(Qt::WindowMaximized | Qt::WindowMinimized);
    WindowLayout(settings).keep(window);
    EXPECT_TRUE(WindowLayout(settings).maximized());
}

TEST(WindowOptionsTest, SaysWhatIsWrong) {
    const auto good = WindowOptions::parse({u"--site=http://a"_s, u"--profile"_s, u"two"_s, u"lumenpair://now"_s});
    ASSERT_TRUE(good);
    EXPECT_EQ(good->site, u"http://a"_s);
    EXPECT_EQ(good->profile, u"two"_s);
    EXPECT_EQ(good->link, u"lumenpair://now"_s);
    EXPECT_EQ(WindowOptions::parse({u"lumenpair:x"_s, u"lumenpair://now"_s})->link, u"lumenpair:x"_s);
    EXPECT_EQ(good->arguments(), (QStringList{u"--site=http://a"_s, u"--profile=two"_s})) << "to be this one again";
    EXPECT_EQ(WindowOptions::parse({u"--sandbox"_s})->arguments(), QStringList{u"--sandbox"_s});
    EXPECT_EQ(WindowOptions::parse({})->arguments(), QStringList());
    qputenv("LMP_SITE", "http://b");
    EXPECT_EQ(WindowOptions::parse({})->site, u"http://b"_s);
    EXPECT_EQ(WindowOptions::parse({u"--sandbox"_s})->site, QString());
    EXPECT_TRUE(WindowOptions::parse({})->named && WindowOptions::parse({u"--sandbox"_s})->named);
    qunsetenv("LMP_SITE");
    EXPECT_FALSE(WindowOptions::parse({})->named);
    for (const QStringList &wrong :
         {QStringList{u"--site"_s}, {u"chat"_s}, {u"--profile=../x"_s}, {u"--sandbox"_s, u"--site"_s, u"http://a"_s}})
        EXPECT_FALSE(WindowOptions::parse(wrong)) << wrong.join(u' ').toStdString();
}

} // namespace lmp
