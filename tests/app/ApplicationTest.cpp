#include "app/Application.h"
#include "platform/FileThread.h"

#include "support/Await.h"

#include <QSemaphore>

#include <gtest/gtest.h>

namespace lmp {

using namespace std::chrono_literals;

TEST(ApplicationTest, WhatIsBeingWrittenIsWaitedForUnlessThereIsALimit) {
    Application application({});
    QSemaphore disk;
    FileThread::pool().start([&disk] { disk.acquire(); });
    EXPECT_FALSE(await(application.close(50ms))) << "it hangs";

    bool closed = false;
    auto closing = application.close().then([&closed](bool settled) { closed = settled; });
    auto bounded = application.close(1h);
    settle();
    EXPECT_FALSE(closed) << "where nothing says that it hangs, nothing is lost";
    disk.release();
    EXPECT_TRUE(await(std::move(bounded)));
    await(std::move(closing));
    EXPECT_TRUE(closed);
}

} // namespace lmp
