#include "support/NothingLeftOver.h"

#include <QGuiApplication>
#include <QQuickWindow>

#include <gtest/gtest.h>

int main(int argc, char **argv) {
    qputenv("QT_LOGGING_RULES", "com.tolvey.quillet.*=false");
    // No test may meet the person's own keyring, site or session.
    for (const char *name : {"DBUS_SESSION_BUS_ADDRESS", "LMP_SITE", "LMP_TOKEN", "DISPLAY", "WAYLAND_DISPLAY"})
        qunsetenv(name);
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QGuiApplication app(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::UnitTest::GetInstance()->listeners().Append(new lmp::NothingLeftOver);
    return RUN_ALL_TESTS();
}
