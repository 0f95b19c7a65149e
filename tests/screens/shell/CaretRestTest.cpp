#include "screens/shell/CaretRest.h"

#include "support/Await.h"

#include <QGuiApplication>
#include <QQuickWindow>
#include <QStyleHints>
#include <QTest>

#include <gtest/gtest.h>

namespace lmp {

using namespace std::chrono_literals;

TEST(CaretRestTest, ItBlinksWhileSomebodyTypes) {
    const auto period = [] {
        return QGuiApplication::styleHints()->cursorFlashTime();
    };
    const int asTheDesktopHasIt = period();
    ASSERT_GT(asTheDesktopHasIt, 0);
    {
        CaretRest rest(20ms);
        QQuickWindow window;
        window.show();
        EXPECT_TRUE(eventually([&] { return period() == 0; }));
        QTest::keyClick(&window, Qt::Key_A);
        EXPECT_EQ(period(), asTheDesktopHasIt);
        EXPECT_TRUE(eventually([&] { return period() == 0; }));
    }
    EXPECT_EQ(period(), asTheDesktopHasIt);
}

} // namespace lmp
