#pragma once

#include "core/URLSession.h"
#include "platform/FileThread.h"
#include "support/Await.h"

#include <QNetworkReply>
#include <QThreadPool>

#include <gtest/gtest.h>

#include <cstdio>

namespace lmp {

/// A coroutine that is never resumed is memory that nobody frees, and the tests are searched for such memory: what a
/// test did not wait for gets its answer after it, and what is still being asked for at the end gets it there, where
/// every service of the tests is gone and no answer takes long.
class NothingLeftOver : public ::testing::EmptyTestEventListener {
public:
    void OnTestEnd(const ::testing::TestInfo &) override {
        QThreadPool::globalInstance()->waitForDone(30'000);
        FileThread::finish();
        settle();
    }

    void OnTestProgramEnd(const ::testing::UnitTest &) override {
        for (const auto &session : {URLSession::normal(), URLSession::events()}) {
            const auto &manager = session.manager();
            if (!eventually([&] { return manager.findChildren<QNetworkReply *>().isEmpty(); }))
                std::fputs("a request is left over\n", stderr);
        }
        settle();
    }
};

} // namespace lmp
