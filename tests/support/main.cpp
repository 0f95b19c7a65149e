#include <QCoreApplication>

#include <gtest/gtest.h>

int main(int argc, char **argv) {
    // Everything that follows the environment must find none of the person's own files.
    qputenv("QT_LOGGING_RULES", "com.tolvey.quillet.*=false");
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return result;
}
