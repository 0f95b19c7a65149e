#include "WindowDriver.h"

#include <QCoreApplication>
#include <QTimer>

#include <cstdio>
#include <ctime>

namespace lmp::bench {

using namespace std::chrono_literals;

namespace {

QQuickItem *findVisible(QQuickItem *below, const QString &type) {
    if (!below->isVisible())
        return nullptr;
    if (QString::fromLatin1(below->metaObject()->className()).section(QStringLiteral("_QML"), 0, 0) == type)
        return below;
    for (auto *child : below->childItems()) {
        if (auto *found = findVisible(child, type))
            return found;
    }
    return nullptr;
}

std::chrono::nanoseconds read(clockid_t clock) {
    timespec time = {};
    ::clock_gettime(clock, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace

WindowDriver::WindowDriver(const QString &site, const QString &token)
    : m_program(
          [&] {
              qputenv("LMP_TOKEN", token.toUtf8());
              return WindowOptions{.site = site, .profile = {}, .link = {}};
          }(),
          SystemClock().monotonic()) {
    m_program.start();
    until("the window", [this] { return m_program.window(); });
    QObject::connect(&window(), &QQuickWindow::frameSwapped, &window(),
                     [this] { m_frames.push_back({Clock::now(), threadTime()}); });
    window().requestActivate();
    until("the shell", [this] {
        if (auto *root = scene().rootView()) {
            root->finishMigrationNotice();
            root->finishOnboarding();
            root->finishHandleSetup();
        }
        return scene().stage() == WindowScene::Stage::Shell;
    });
    scene().telemetry()->answer(false);
    until("the list", [this] { return !scene().conversations()->loading(); });
    untilQuiet();
}

QQuickItem *WindowDriver::item(const QString &type) {
    return findVisible(window().contentItem(), type);
}

void WindowDriver::until(const char *what, const std::function<bool()> &reached) {
    // Wakes the loop when nothing else does.
    QTimer tick;
    tick.start(1);
    const auto end = Clock::now() + 60s;
    while (!reached()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (Clock::now() > end) {
            std::fprintf(stderr, "waited in vain for %s\n", what);
            std::exit(1);
        }
    }
}

void WindowDriver::rest(std::chrono::milliseconds time) {
    bool over = false;
    QTimer::singleShot(time, Qt::PreciseTimer, [&over] { over = true; });
    while (!over)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

WindowDriver::Clock::time_point WindowDriver::untilQuiet() {
    std::size_t seen = 0;
    do {
        seen = m_frames.size();
        rest(400ms);
    } while (m_frames.size() != seen);
    return m_frames.empty() ? Clock::now() : m_frames.back().time;
}

std::chrono::duration<double> WindowDriver::processorTime() {
    return read(CLOCK_PROCESS_CPUTIME_ID);
}

std::chrono::nanoseconds WindowDriver::threadTime() {
    return read(CLOCK_THREAD_CPUTIME_ID);
}

double WindowDriver::memory() {
    double kib = 0;
    if (std::FILE *file = std::fopen("/proc/self/smaps_rollup", "r")) {
        char line[256];
        while (std::fgets(line, sizeof line, file))
            std::sscanf(line, "Pss: %lf", &kib);
        std::fclose(file);
    }
    return kib / 1024;
}

} // namespace lmp::bench
