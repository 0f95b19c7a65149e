// An engine from its child to its events: bench_engine_events PROGRAM [stall claude|codex], a script that plays Claude
// Code or Codex.
//
// Prints the time from the start to the first event and to the end of the stream, and what was said. stall: takes the
// first events of a flood and then none for a second; prints how much the memory has grown in that time, and how many
// events waited.

#include "../Resident.h"
#include "core/Detach.h"
#include "dev/LoginShell.h"
#include "dev/claude/ClaudeCodeEngine.h"
#include "dev/codex/CodexEngine.h"
#include "platform/SystemClock.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>

#include <cstdio>

namespace {

QCoro::Task<> readAll(lmp::DevEngine *engine) {
    QElapsedTimer timer;
    timer.start();
    const auto session = co_await engine->start({.cwd = QUrl::fromLocalFile(QDir::currentPath())});
    if (!session)
        qFatal("%s", qUtf8Printable(session.error().message));
    double first = 0;
    qint64 events = 0, units = 0;
    while (const auto event = co_await session->events.next()) {
        if (events++ == 0)
            first = double(timer.nsecsElapsed()) / 1e6;
        if (const auto *text = std::get_if<lmp::dev_event::AssistantText>(&*event))
            units += text->text.size();
    }
    std::printf("first_ms=%.3f ms=%.1f events=%lld sum=%lld\n", first, double(timer.nsecsElapsed()) / 1e6, events,
                units);
    QCoreApplication::quit();
}

QCoro::Task<> stall(lmp::DevEngine *engine) {
    lmp::SystemClock clock;
    const long before = lmp::bench::residentKB(); // the flood may fill what it can before anything is taken
    const auto session = co_await engine->start({.cwd = QUrl::fromLocalFile(QDir::currentPath())});
    if (!session)
        qFatal("%s", qUtf8Printable(session.error().message));
    // The first of them only begin the session.
    for (int taken = 0; taken < 10; ++taken)
        co_await session->events.next();
    co_await clock.sleep(std::chrono::seconds(1), {});
    const long growth = std::max(lmp::bench::residentKB() - before, 0L);
    qint64 waited = 0;
    while (session->events.tryNext())
        ++waited;
    const bool flows = (co_await session->events.next()).has_value();
    std::printf("growth_kb=%ld waited=%lld flows=%d\n", growth, waited, flows);
    QCoreApplication::quit();
}

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    // Asked once in the life of a program, and not by an engine alone.
    lmp::LoginShell::applicationPath();
    const QStringList arguments = QCoreApplication::arguments();
    const QString program = arguments.value(1);
    const auto engine = arguments.value(3) == QStringLiteral("codex")
                            ? lmp::DevEngine::make<lmp::CodexEngine>(program, lmp::CodexEngine::Limits())
                            : lmp::DevEngine::make<lmp::ClaudeCodeEngine>(program);
    lmp::detach(arguments.size() > 2 ? stall(engine.get()) : readAll(engine.get()), "the reading");
    return QCoreApplication::exec();
}
