#include "support/Await.h"

#include <QCoreApplication>
#include <QThreadPool>

#include <gtest/gtest.h>

namespace {

/// Work that a test has given to the pool may outlive what the test waited for. Its answer comes back to this thread,
/// and a coroutine that is never resumed is memory that nobody frees.
class NothingLeftOver : public ::testing::EmptyTestEventListener {
public:
    void OnTestEnd(const ::testing::TestInfo &) override {
        QThreadPool::globalInstance()->waitForDone(30'000);
        lmp::settle();
    }
};

} // namespace

int main(int argc, char **argv) {
    // Everything that follows the environment must find none of the person's own files.
    qputenv("QT_LOGGING_RULES", "com.tolvey.quillet.*=false");
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::UnitTest::GetInstance()->listeners().Append(new NothingLeftOver);
    return RUN_ALL_TESTS();
}
