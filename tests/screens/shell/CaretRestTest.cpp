#include "screens/shell/CaretRest.h"

#include "support/Await.h"

#include <QGuiApplication>
#include <QInputMethodEvent>
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
        CaretRest rest(300ms);
        QQuickWindow window;
        window.show();
        const std::vector<std::function<void()>> deeds{
            [&] { QTest::keyClick(&window, Qt::Key_A); },
            [&] { QTest::mouseClick(&window, Qt::LeftButton); },
            [&] {
                QInputMethodEvent composing(QStringLiteral("ni"), {});
                QCoreApplication::sendEvent(&window, &composing);
            },
        };
        for (const auto &deed : deeds) {
            EXPECT_TRUE(eventually([&] { return period() == 0; }));
            deed();
            EXPECT_EQ(period(), asTheDesktopHasIt);
        }
        EXPECT_TRUE(eventually([&] { return period() == 0; }));
    }
    EXPECT_EQ(period(), asTheDesktopHasIt);
}

} // namespace lmp
