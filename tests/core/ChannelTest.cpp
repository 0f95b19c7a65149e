#include "core/Channel.h"
#include "core/Detach.h"
#include "support/Await.h"

#include <QThread>

#include <gtest/gtest.h>

namespace lmp {

using namespace std::chrono_literals;

namespace {

/// A thread with an event loop, on which tasks are started.
class Worker {
public:
    Worker() {
        m_context.moveToThread(&m_thread);
        m_thread.start();
    }
    ~Worker() {
        m_thread.quit();
        m_thread.wait();
    }
    template <class F>
    void run(F work) {
        QMetaObject::invokeMethod(&m_context, std::move(work), Qt::QueuedConnection);
    }

private:
    QThread m_thread;
    QObject m_context;
};

QCoro::Task<> pushNumbers(Channel<int> channel, int count) {
    for (int number = 0; number < count; ++number) {
        if (!co_await channel.push(number))
            co_return;
    }
    channel.close();
}

QCoro::Task<QList<int>> takeAll(Channel<int> channel) {
    QList<int> all;
    while (const auto item = co_await channel.next())
        all.append(*item);
    co_return std::as_const(all);
}

QCoro::Task<> noteEnd(Channel<int> channel, std::stop_token stop, int *ends) {
    while (co_await channel.next(stop)) {
    }
    ++*ends;
}

QCoro::Task<> notePush(Channel<int> channel, int *taken, int *refused, std::size_t weight = 1) {
    ++*(co_await channel.push(7, weight) ? taken : refused);
}

TEST(Channel, CarriesEverythingInOrderAcrossThreads) {
    constexpr int count = 20'000;
    QList<int> expected;
    for (int number = 0; number < count; ++number)
        expected.append(number);
    for (const std::size_t capacity : {1, 7, 1000}) {
        Worker producer;
        Channel<int> channel(capacity);
        producer.run([channel] { detach(pushNumbers(channel, count), "pushing"); });
        EXPECT_EQ(await(takeAll(channel)), expected) << capacity;
        EXPECT_TRUE(channel.isOver());
    }
}

TEST(Channel, HoldsTheProducerBack) {
    const Channel<int> channel(10);
    int calls = 0;
    channel.whenRoom([&calls] { ++calls; });
    int item = 1;
    EXPECT_EQ(channel.tryPush(item, 100), Channel<int>::Pushed::Taken); // alone, however heavy
    EXPECT_EQ(channel.tryPush(item), Channel<int>::Pushed::Full);
    EXPECT_EQ(channel.tryNext(), 1);
    EXPECT_EQ(calls, 1);
    for (item = 0; item < 10; ++item)
        EXPECT_EQ(channel.tryPush(item), Channel<int>::Pushed::Taken);
    EXPECT_EQ(channel.tryPush(item), Channel<int>::Pushed::Full);
    for (int taken = 0; taken < 4; ++taken)
        channel.tryNext();
    EXPECT_EQ(calls, 1);
    channel.tryNext();
    EXPECT_EQ(calls, 2);
    for (int taken = 0; taken < 5; ++taken)
        channel.tryNext();
    EXPECT_EQ(calls, 2); // nobody was turned away since
    EXPECT_EQ(channel.tryNext(), std::nullopt);
}

/// What is heavier than the half that is free when the producer is told needs more than to be told.
TEST(Channel, AHeavyItemIsNotLost) {
    const Channel<int> channel(10);
    QList<int> order;
    int taken = 0, refused = 0, calls = 0;
    channel.whenRoom([&calls] { ++calls; });
    const auto push = [&channel](int item, std::size_t weight) {
        return channel.tryPush(item, weight);
    };
    EXPECT_EQ(push(1, 4), Channel<int>::Pushed::Taken);
    EXPECT_EQ(push(2, 4), Channel<int>::Pushed::Taken);
    detach(notePush(channel, &taken, &refused, 8), "pushing");
    EXPECT_EQ(push(3, 0), Channel<int>::Pushed::Taken); // beside the one that waits
    for (const int expected : {1, 2}) {
        EXPECT_EQ(channel.tryNext(), expected);
        settle();
    }
    EXPECT_EQ(taken, 1);
    EXPECT_EQ(channel.tryNext(), 3);
    EXPECT_EQ(channel.tryNext(), 7);

    // The room that the producer was told of is gone again before it looks.
    EXPECT_EQ(push(4, 10), Channel<int>::Pushed::Taken);
    detach(notePush(channel, &taken, &refused, 8), "pushing");
    EXPECT_EQ(channel.tryNext(), 4);
    EXPECT_EQ(push(5, 4), Channel<int>::Pushed::Taken);
    settle();
    EXPECT_EQ(taken, 1);
    EXPECT_EQ(channel.tryNext(), 5);
    settle();
    EXPECT_EQ(taken, 2);
    EXPECT_EQ(channel.tryNext(), 7);

    // Who asks again by itself is told when that is of use.
    calls = 0;
    for (const int item : {6, 8})
        EXPECT_EQ(push(item, 4), Channel<int>::Pushed::Taken);
    EXPECT_EQ(push(9, 8), Channel<int>::Pushed::Full);
    channel.tryNext();
    EXPECT_EQ(calls, 0);
    channel.tryNext();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(push(9, 100), Channel<int>::Pushed::Taken);
    EXPECT_EQ(push(10, 0), Channel<int>::Pushed::Taken); // over and above
    EXPECT_EQ(refused, 0);
}

TEST(Channel, EitherSideMayGoFirst) {
    int ends = 0;
    int taken = 0;
    int refused = 0;
    // A consumer that waits while the producer closes, and one that comes later.
    const Channel<int> closed(2);
    detach(noteEnd(closed, {}, &ends), "waiting");
    settle();
    EXPECT_EQ(ends, 0);
    closed.close();
    EXPECT_EQ(ends, 0); // never inside the call
    settle();
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(await(takeAll(closed)), QList<int>());
    // What was queued before the end arrives.
    const Channel<int> queued(2);
    detach(pushNumbers(queued, 2), "pushing");
    EXPECT_EQ(await(takeAll(queued)), (QList<int>{0, 1}));
    // A producer that waits while the consumer cancels, and one that comes later.
    const Channel<int> cancelled(1);
    detach(notePush(cancelled, &taken, &refused), "pushing");
    detach(notePush(cancelled, &taken, &refused), "pushing");
    settle();
    EXPECT_EQ(taken, 1);
    EXPECT_EQ(refused, 0);
    cancelled.cancel();
    detach(notePush(cancelled, &taken, &refused), "pushing");
    settle();
    EXPECT_EQ(taken, 1);
    EXPECT_EQ(refused, 2);
    EXPECT_EQ(cancelled.tryNext(), std::nullopt);
}

TEST(Channel, AStoppedWaitLeavesItAsItIs) {
    const Channel<int> channel(2);
    int ends = 0;
    std::stop_source stop;
    detach(noteEnd(channel, stop.get_token(), &ends), "waiting");
    settle();
    std::thread([&stop] { stop.request_stop(); }).join();
    ASSERT_TRUE(eventually([&ends] { return ends == 1; }));
    int item = 5;
    EXPECT_EQ(channel.tryPush(item), Channel<int>::Pushed::Taken);
    detach(noteEnd(channel, stop.get_token(), &ends), "not waiting");
    EXPECT_EQ(ends, 2);
    channel.close();
    EXPECT_EQ(await(takeAll(channel)), QList<int>{5});
}

TEST(Channel, AWaitingFrameMayBeDestroyed) {
    struct Frame {
        struct promise_type {
            Frame get_return_object() { return {std::coroutine_handle<promise_type>::from_promise(*this)}; }
            std::suspend_never initial_suspend() noexcept { return {}; }
            std::suspend_always final_suspend() noexcept { return {}; }
            void return_void() {}
            void unhandled_exception() { std::terminate(); }
        };
        std::coroutine_handle<promise_type> handle;
    };
    const Channel<int> channel(1);
    const auto wait = [](Channel<int> from) -> Frame {
        co_await from.next();
    };
    const auto push = [](Channel<int> to) -> Frame {
        co_await to.push(2);
    };
    wait(channel).handle.destroy();
    const auto woken = wait(channel);
    int item = 1;
    EXPECT_EQ(channel.tryPush(item), Channel<int>::Pushed::Taken); // its wake is on the way
    woken.handle.destroy();
    settle();
    push(channel).handle.destroy();
    EXPECT_EQ(channel.tryNext(), 1);
    settle();
    EXPECT_EQ(channel.tryNext(), std::nullopt);
}

} // namespace

} // namespace lmp
