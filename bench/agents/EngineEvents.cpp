// An engine from its child to its events: bench_engine_events PROGRAM, a script that plays Claude Code.
//
// Prints the time from the start to the first event and to the end of the stream, and what was said.

#include "core/Detach.h"
#include "dev/LoginShell.h"
#include "dev/claude/ClaudeCodeEngine.h"

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

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    // Asked once in the life of a program, and not by an engine alone.
    lmp::LoginShell::applicationPath();
    const auto engine = lmp::DevEngine::make<lmp::ClaudeCodeEngine>(QString::fromLocal8Bit(argv[1]));
    lmp::detach(readAll(engine.get()), "readAll");
    return QCoreApplication::exec();
}
