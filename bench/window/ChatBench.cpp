// bench_window_chat SITE MODE: what the window costs while it is used, printed as "name=value" words.
//
// open: a long conversation ("long" at the service), and the quick switcher. wheel: the same as far as a hand turns a
// wheel, a notch a frame. scroll: from its end to its beginning, a page a frame. stream: a reply that grows. keys:
// typing meanwhile.

#include "WindowDriver.h"

#include "screens/shell/GraphicsChoice.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QWheelEvent>

#include <algorithm>
#include <cstdio>
#include <thread>

namespace lmp::bench {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using Clock = WindowDriver::Clock;

namespace {

/// The value below which `share` of all are.
double quantile(std::vector<double> values, double share) {
    if (values.empty())
        return 0;
    std::ranges::sort(values);
    return values[std::min(values.size() - 1, std::size_t(double(values.size()) * share))];
}

/// Opens the long conversation, and waits until it has been drawn.
void openLong(WindowDriver &driver) {
    auto &chat = *driver.scene().chat();
    Clock::time_point arrived;
    std::chrono::nanoseconds spent{};
    // Emptied when it is asked for, filled when it is there.
    QObject::connect(chat.messages(), &QAbstractItemModel::modelAboutToBeReset, &driver.window(), [&] {
        arrived = Clock::now();
        spent = WindowDriver::threadTime();
    });
    const double before = WindowDriver::memory();
    const auto asked = Clock::now();
    driver.scene().openConversation(u"long"_s);
    driver.until("the conversation", [&] { return chat.conversationId() == u"long" && !chat.loading(); });
    driver.until("its messages", [&] { return driver.item(u"TwinMessage"_s) != nullptr; });
    driver.forgetFrames();
    driver.until("a frame with them", [&] { return !driver.frames().empty(); });
    const auto painted = driver.frames().front();
    const auto last = driver.untilQuiet();
    QObject::disconnect(chat.messages(), nullptr, &driver.window(), nullptr);
    std::printf("open_ms=%.1f open_cpu_ms=%.1f asked_ms=%.1f quiet_ms=%.1f open_mb=%.1f ",
                WindowDriver::milliseconds(painted.time - arrived), WindowDriver::milliseconds(painted.spent - spent),
                WindowDriver::milliseconds(painted.time - asked), WindowDriver::milliseconds(last - arrived),
                WindowDriver::memory() - before);
}

void openSwitcher(WindowDriver &driver) {
    for (const char *name : {"switcher_ms", "switcher_again_ms"}) {
        driver.untilQuiet();
        driver.forgetFrames();
        const auto asked = Clock::now();
        driver.scene().commands()->run(AppCommands::Command::Switcher);
        driver.until("the switcher", [&] { return driver.item(u"QuickSwitcher"_s) || driver.item(u"LMPRow"_s); });
        driver.until("a frame with it", [&] { return !driver.frames().empty(); });
        std::printf("%s=%.1f ", name, WindowDriver::milliseconds(driver.frames().front().time - asked));
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QCoreApplication::sendEvent(&driver.window(), &press);
    }
}

/// Turns the wheel by `notches` a frame, `most` times or up to the beginning, and tells of the frames as NAME_*.
void scroll(WindowDriver &driver, const char *name, double notches, int most) {
    auto &messages = *driver.scene().chat()->messages();
    auto *transcript = driver.item(u"Transcript"_s);
    const QPointF middle = transcript->mapToScene(transcript->boundingRect().center());
    const auto top = [&] {
        return messages.atStart() && transcript->property("contentY").toReal() <= 0;
    };
    driver.forgetFrames();
    std::vector<double> work;
    std::vector<double> cpu;
    int steps = 0;
    int unfinished = 0;
    const auto *held = driver.item(u"TranscriptScroll"_s);
    while (!top() && steps < most) {
        const std::size_t seen = driver.frames().size();
        const auto began = Clock::now();
        const auto spent = WindowDriver::threadTime();
        QWheelEvent wheel(middle, middle, QPoint(), QPoint(0, int(120 * notches)), Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&driver.window(), &wheel);
        driver.until("the next frame",
                     [&] { return driver.frames().size() > seen || top() || Clock::now() - began > 250ms; });
        if (driver.frames().size() > seen) {
            work.push_back(WindowDriver::milliseconds(driver.frames()[seen].time - began));
            cpu.push_back(WindowDriver::milliseconds(driver.frames()[seen].spent - spent));
            unfinished += held->property("filling").toBool();
        }
        ++steps;
    }
    const auto over = [](const std::vector<double> &times) {
        return std::ranges::count_if(times, [](double ms) { return ms > 33; });
    };
    const auto tell = [&](const char *what, double value) {
        std::printf("%s_%s=%.1f ", name, what, value);
    };
    tell("frames", double(work.size()));
    tell("unfinished", unfinished);
    tell("p50_ms", quantile(work, 0.5));
    tell("p99_ms", quantile(work, 0.99));
    tell("max_ms", quantile(work, 1));
    tell("over", double(over(work)));
    tell("cpu_p50_ms", quantile(cpu, 0.5));
    tell("cpu_p99_ms", quantile(cpu, 0.99));
    tell("cpu_max_ms", quantile(cpu, 1));
    tell("reached", top());
}

/// Asks for a reply that begins with so many KB, and waits until it grows on.
void beginReply(WindowDriver &driver, const QString &question) {
    auto &chat = *driver.scene().chat();
    driver.scene().startConversation();
    chat.setInput(question);
    if (!chat.send()) {
        std::fprintf(stderr, "not sent: %s\n", qPrintable(chat.inputHeldReason()));
        std::exit(1);
    }
    driver.until("the reply", [&] { return chat.messages()->rowCount() == 2; });
    // What comes first is long, and laid out once; then nothing comes for a while.
    driver.rest(12s);
}

/// The cost of a reply that grows.
void stream(WindowDriver &driver) {
    for (const auto &[question, name] : {std::pair(u"10"_s, "10"), std::pair(u"100"_s, "100")}) {
        beginReply(driver, question);
        driver.forgetFrames();
        const auto before = WindowDriver::processorTime();
        const auto began = Clock::now();
        driver.rest(10s);
        const auto spent = WindowDriver::processorTime() - before;
        const std::chrono::duration<double> took = Clock::now() - began;
        std::printf("stream_%s_cpu=%.2f stream_%s_frames=%zu ", name, 100 * (spent / took), name,
                    driver.frames().size());
        driver.scene().chat()->stop();
        driver.until("the end", [&] { return driver.scene().chat()->isIdle(); });
        driver.untilQuiet();
    }
}

/// Letters typed while a reply grows, each from when it is there to be handled until the frame that shows it.
void keys(WindowDriver &driver) {
    beginReply(driver, u"10"_s);
    driver.scene().commands()->run(AppCommands::Command::TabNow);
    std::vector<double> times;
    auto *window = &driver.window();
    std::thread typist([&] {
        for (int at = 0; at < 400; ++at) {
            std::this_thread::sleep_for(23ms);
            QMetaObject::invokeMethod(
                window,
                [&, pressed = Clock::now(), letter = QString(QChar(u'a' + at % 26))] {
                    const qsizetype length = driver.scene().chat()->input().size();
                    QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, letter);
                    QCoreApplication::sendEvent(window, &press);
                    QKeyEvent release(QEvent::KeyRelease, Qt::Key_A, Qt::NoModifier, letter);
                    QCoreApplication::sendEvent(window, &release);
                    if (driver.scene().chat()->input().size() == length + 1)
                        QObject::connect(
                            window, &QQuickWindow::frameSwapped, window,
                            [&times, pressed] { times.push_back(WindowDriver::milliseconds(Clock::now() - pressed)); },
                            Qt::SingleShotConnection);
                },
                Qt::QueuedConnection);
        }
    });
    driver.rest(400 * 24ms + 500ms);
    typist.join();
    driver.rest(200ms);
    std::printf("keys=%zu keys_p50_ms=%.1f keys_p99_ms=%.1f keys_max_ms=%.1f ", times.size(), quantile(times, 0.5),
                quantile(times, 0.99), quantile(times, 1));
}

} // namespace
} // namespace lmp::bench

int main(int argc, char **argv) {
    using namespace lmp::bench;
    lmp::GraphicsChoice::make();
    const QGuiApplication app(argc, argv);
    if (argc != 3)
        return 2;
    QGuiApplication::setApplicationName(u"lumenpair"_s);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    const QByteArray mode = argv[2];
    {
        WindowDriver driver(QString::fromLocal8Bit(argv[1]), u"bench"_s);
        if (mode == "open") {
            openSwitcher(driver);
            openLong(driver);
        } else if (mode == "scroll") {
            openLong(driver);
            // A screen at a time, as fast as it goes.
            scroll(driver, "scroll", 10, 20'000);
        } else if (mode == "wheel") {
            openLong(driver);
            // No hand turns it so fast.
            scroll(driver, "wheel", 1, 1'000);
        } else if (mode == "stream")
            stream(driver);
        else if (mode == "keys")
            keys(driver);
        else
            return 2;
    }
    std::printf("\n");
    return 0;
}
