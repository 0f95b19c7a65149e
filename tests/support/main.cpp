#include "support/NothingLeftOver.h"

#include <QCoreApplication>

int main(int argc, char **argv) {
    // Everything that follows the environment must find none of the person's own files.
    qputenv("QT_LOGGING_RULES", "com.tolvey.quillet.*=false");
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::UnitTest::GetInstance()->listeners().Append(new lmp::NothingLeftOver);
    return RUN_ALL_TESTS();
}
