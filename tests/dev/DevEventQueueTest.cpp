#include "dev/DevChildEngine.h"
#include "dev/DevPool.h"
#include "dev/Scripts.h"
#include "dev/claude/ClaudeCodeEngine.h"
#include "dev/codex/CodexEngine.h"

#include "core/Detach.h"

#include <QSemaphore>
#include <QThreadPool>

#include <gmock/gmock.h>

namespace lmp {

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;

namespace {

std::vector<QString> taken(const Channel<DevEvent> &events) {
    std::vector<QString> texts;
    while (const auto event = events.tryNext()) {
        texts.push_back(std::get<dev_event::Notice>(*event).text);
        settle();
    }
    return texts;
}

QCoro::Task<> noteStart(DevEngine *engine, QUrl folder, std::optional<QString> *failure) {
    const auto session = co_await engine->start({.cwd = folder});
    *failure = session ? u"started"_s : session.error().message;
}

} // namespace

/// Nothing overtakes what waits for a slow consumer, however heavy that is, and nothing is lost of it.
TEST(DevEventQueue, KeepsTheOrder) {
    DevEventQueue queue;
    const auto session = queue.session();
    const auto tell = [&queue](const QString &text) {
        queue.tell(dev_event::Notice{text});
    };
    tell(u"before"_s);
    queue.hold();
    for (const auto &text : {u"heavy"_s, u"heavier"_s, u"heaviest"_s}) {
        queue.weigh(DevEventQueue::room);
        tell(text);
    }
    EXPECT_EQ(queue.held(), 3);
    detach(queue.deliver(), "delivering");
    tell(u"beside"_s);
    EXPECT_THAT(taken(session.events), ElementsAre(u"before"_s, u"heavy"_s, u"heavier"_s, u"heaviest"_s, u"beside"_s));
    tell(u"after"_s); // with nobody who reads, and so delivers
    EXPECT_THAT(taken(session.events), ElementsAre(u"after"_s));
    queue.close();
    tell(u"late"_s);
    EXPECT_FALSE(session.events.tryNext().has_value());
    EXPECT_TRUE(session.withdrawn.isOver());
}

/// Starting may take seconds, and whoever gives up does not wait for that.
TEST(DevChildEngine, StopsWhileItStarts) {
    const Scripts scripts;
    const QString agent = scripts.write(u"agent"_s, "#!/bin/sh\nexec cat\n");
    const int threads = DevPool::waiting().maxThreadCount();
    for (const bool released : {false, true}) {
        for (const bool isClaude : {false, true}) {
            auto engine = isClaude ? DevEngine::make<ClaudeCodeEngine>(agent)
                                   : DevEngine::make<CodexEngine>(agent, CodexEngine::Limits());
            // No thread is free to start anything.
            QSemaphore busy;
            DevPool::waiting().setMaxThreadCount(1);
            DevPool::waiting().start([&busy] { busy.acquire(); });
            std::optional<QString> failure;
            detach(noteStart(engine.get(), QUrl::fromLocalFile(scripts.folder()), &failure), "starting");
            settle();
            if (released)
                engine.reset();
            else
                engine->shutdown();
            EXPECT_TRUE(eventually([&failure] { return failure.has_value(); }));
            EXPECT_EQ(failure, u"会话已经结束"_s);
            busy.release();
            DevPool::waiting().waitForDone();
            DevPool::waiting().setMaxThreadCount(threads);
        }
    }
    EXPECT_TRUE(eventually([] { return DevProcessRegistry::shared().liveCount() == 0; }));
}

} // namespace lmp
