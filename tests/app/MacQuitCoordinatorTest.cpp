#include "app/LocalInputRegistry.h"
#include "app/MacAppLifecycle.h"
#include "core/Later.h"
#include "platform/Log.h"

#include "support/Await.h"
#include "support/ManualClock.h"

#include <gtest/gtest.h>

#include <csignal>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using State = MacQuitCoordinator::State;

namespace {

const QString cancelled = u"Local input could not be preserved; application termination cancelled."_s;
const QString late = u"Local shutdown deadline reached; process exit and remote cancellation are unconfirmed."_s;

QStringList *logged = nullptr;

QCoro::Task<bool> whenResolved(Later<bool> answer) {
    co_return co_await answer;
}

QCoro::Task<bool> at(bool answer) {
    co_return answer;
}

QCoro::Task<bool> thrown() {
    throw std::runtime_error("full");
    co_return true;
}

} // namespace

class MacQuitCoordinatorTest : public ::testing::Test {
protected:
    MacQuitCoordinatorTest() {
        logged = &lines;
        former = qInstallMessageHandler([](QtMsgType, const QMessageLogContext &context, const QString &text) {
            if (qstrcmp(context.category, "com.tolvey.quillet.LocalTermination") == 0)
                logged->push_back(text);
        });
        const_cast<QLoggingCategory &>(logTermination()).setEnabled(QtWarningMsg, true);
        QObject::connect(&quit, &MacQuitCoordinator::terminationAllowed, [this] { ++allowed; });
        QObject::connect(&quit, &MacQuitCoordinator::terminationRefused, [this] { ++refused; });
        QObject::connect(&quit, &MacQuitCoordinator::raiseRequested, [this] { ++raised; });
    }
    ~MacQuitCoordinatorTest() override {
        // Whoever still waits ends, so that nothing is left of it.
        for (const auto &save : saves)
            save.resolve(false);
        clock.advance(1h);
        settle();
        qInstallMessageHandler(former);
    }
    void finish(bool saved) {
        saves.back().resolve(saved);
        settle();
    }

    QStringList lines;
    ManualClock clock;
    std::vector<Later<bool>> saves; ///< of each save begun, in order
    int allowed = 0;
    int refused = 0;
    int raised = 0;
    MacQuitCoordinator quit{[this] { return whenResolved(saves.emplace_back()); }, clock};
    QtMessageHandler former = nullptr;
};

TEST_F(MacQuitCoordinatorTest, EndsWhenEverythingIsSaved) {
    EXPECT_FALSE(quit.started());
    quit.requestTermination();
    quit.requestTermination();
    settle();
    EXPECT_EQ(saves.size(), 1u);
    EXPECT_EQ(clock.sleepers(), 1);
    EXPECT_TRUE(quit.started());
    EXPECT_FALSE(quit.resolved());
    finish(true);
    EXPECT_EQ(allowed, 1);
    EXPECT_TRUE(quit.resolved());
    EXPECT_FALSE(quit.late());
    EXPECT_EQ(clock.sleepers(), 0) << "the deadline goes with the save";
    clock.advance(10s);
    quit.requestTermination();
    settle();
    EXPECT_EQ(allowed, 1);
    EXPECT_EQ(saves.size(), 1u);
    EXPECT_TRUE(lines.isEmpty());
}

TEST_F(MacQuitCoordinatorTest, TheDeadlineEndsWhatHangs) {
    for (const bool saved : {true, false}) {
        lines.clear();
        allowed = 0;
        MacQuitCoordinator hung([this] { return whenResolved(saves.emplace_back()); }, clock);
        QObject::connect(&hung, &MacQuitCoordinator::terminationAllowed, [this] { ++allowed; });
        hung.requestTermination();
        clock.advance(3999ms);
        settle();
        EXPECT_EQ(allowed, 0);
        clock.advance(1ms);
        settle();
        EXPECT_EQ(allowed, 1);
        finish(saved);
        EXPECT_EQ(allowed, 1) << "only the first answer counts";
        EXPECT_TRUE(hung.late());
        EXPECT_EQ(hung.state(), State::Resolved);
        EXPECT_EQ(lines, QStringList{late});
    }
}

TEST_F(MacQuitCoordinatorTest, AFailedSaveAsksAndARefusalMakesItIdle) {
    quit.requestTermination();
    finish(false);
    EXPECT_EQ(quit.state(), State::Warning);
    EXPECT_EQ(raised, 1);
    EXPECT_EQ(lines, QStringList{cancelled});
    clock.advance(10s);
    settle();
    EXPECT_EQ(quit.state(), State::Warning) << "the deadline was of the save";
    quit.requestTermination();
    EXPECT_EQ(raised, 2) << "asked again, it shows the warning again";
    EXPECT_EQ(saves.size(), 1u);

    quit.retryAndQuit();
    quit.retryAndQuit();
    EXPECT_EQ(saves.size(), 2u);
    finish(false);
    EXPECT_EQ(quit.state(), State::Warning);
    quit.returnToApplication();
    settle();
    EXPECT_EQ(refused, 1);
    EXPECT_EQ(quit.state(), State::Idle);
    EXPECT_FALSE(quit.started());

    // Neither button does anything when the warning is not up.
    quit.retryAndQuit();
    quit.returnToApplication();
    settle();
    EXPECT_EQ(saves.size(), 2u);
    EXPECT_EQ(refused, 1);

    quit.requestTermination();
    finish(false);
    quit.retryAndQuit();
    finish(true);
    EXPECT_EQ(allowed, 1);
}

TEST_F(MacQuitCoordinatorTest, ARetryThatHangsEndsToo) {
    quit.requestTermination();
    clock.advance(3s);
    finish(false);
    quit.retryAndQuit();
    settle();
    clock.advance(3s);
    settle();
    EXPECT_EQ(allowed, 0) << "a deadline of its own";
    clock.advance(1s);
    settle();
    EXPECT_EQ(allowed, 1);
}

TEST_F(MacQuitCoordinatorTest, EveryWayToQuitIsOneRequest) {
    // A shell that starts us in the background has them ignored, and then they stay so.
    for (const int signal : {SIGTERM, SIGHUP, SIGINT})
        std::signal(signal, SIG_DFL);
    struct Case {
        const char *way;
        std::function<void(MacAppLifecycle &)> take;
    };
    for (const auto &[way, take] : std::initializer_list<Case>{
             {"menu",
              [](auto &lifecycle) {
                  lifecycle.quit();
              }},
             {"window",
              [](auto &lifecycle) {
                  EXPECT_FALSE(lifecycle.mayCloseLastWindow());
              }},
             {"SIGTERM",
              [](auto &) {
                  std::raise(SIGTERM);
              }},
             {"SIGHUP",
              [](auto &) {
                  std::raise(SIGHUP);
              }},
             {"SIGINT",
              [](auto &) {
                  std::raise(SIGINT);
              }},
             {"Qt",
              [](auto &) {
                  QEvent event(QEvent::Quit);
                  QCoreApplication::sendEvent(QCoreApplication::instance(), &event);
                  EXPECT_FALSE(event.isAccepted());
              }},
         }) {
        SCOPED_TRACE(way);
        saves.clear();
        MacQuitCoordinator asked([this] { return whenResolved(saves.emplace_back()); }, clock);
        MacAppLifecycle lifecycle(asked);
        take(lifecycle);
        EXPECT_TRUE(eventually([&] { return asked.started(); }));
        lifecycle.quit();
        EXPECT_EQ(saves.size(), 1u);
        finish(true);
        EXPECT_TRUE(lifecycle.mayCloseLastWindow()) << "now it may";
        struct sigaction action = {};
        ::sigaction(SIGTERM, nullptr, &action);
        EXPECT_EQ(action.sa_handler, SIG_DFL) << "and a second signal ends what hangs after that";
    }
}

TEST_F(MacQuitCoordinatorTest, ASessionThatMayGoOnOnlyHasEverythingSaved) {
    MacAppLifecycle lifecycle(quit);
    for (const bool saved : {true, false}) {
        lifecycle.saveForSession();
        finish(saved);
        EXPECT_EQ(quit.state(), State::Idle) << "a checkpoint, or a logout that somebody calls off";
        EXPECT_FALSE(quit.started());
    }
    EXPECT_EQ(saves.size(), 2u);
    EXPECT_EQ(raised + allowed, 0);
    EXPECT_TRUE(lines.isEmpty());

    // The end that follows is asked as any other, and a save that is under way is not begun twice.
    lifecycle.saveForSession();
    lifecycle.quit();
    lifecycle.saveForSession();
    EXPECT_EQ(saves.size(), 4u);
    saves[2].resolve(true);
    settle();
    EXPECT_EQ(quit.state(), State::Saving) << "only its own save lets it end";
    finish(true);
    EXPECT_EQ(allowed, 1);
    lifecycle.saveForSession();
    EXPECT_EQ(saves.size(), 4u);
}

TEST(LocalInputRegistryTest, AllAreSavedWhateverOneOfThemDoes) {
    LocalInputRegistry registry;
    EXPECT_TRUE(await(registry.saveAll()));
    std::vector<int> called;
    const auto noting = [&called](int number, QCoro::Task<bool> (*save)()) {
        return [&called, number, save] {
            called.push_back(number);
            return save();
        };
    };
    const auto good = registry.add(noting(1, [] { return at(true); }));
    {
        const auto bad = registry.add(noting(2, [] { return at(false); }));
        const auto throws = registry.add(noting(3, thrown));
        const auto last = registry.add(noting(4, [] { return at(true); }));
        EXPECT_FALSE(await(registry.saveAll()));
        EXPECT_EQ(called, (std::vector{1, 2, 3, 4}));
    }
    called.clear();
    EXPECT_TRUE(await(registry.saveAll())) << "who has left is not asked";
    EXPECT_EQ(called, std::vector{1});
}

TEST(LocalInputRegistryTest, NobodyWaitsForAnother) {
    LocalInputRegistry registry;
    const Later<bool> slow;
    bool second = false;
    auto first = std::make_optional(registry.add([slow] { return whenResolved(slow); }));
    const auto other = registry.add([&second] {
        second = true;
        return at(true);
    });
    auto all = registry.saveAll();
    EXPECT_TRUE(second);
    first.reset(); // its owner goes while it is being saved
    slow.resolve(true);
    EXPECT_TRUE(await(std::move(all)));
}

} // namespace lmp
