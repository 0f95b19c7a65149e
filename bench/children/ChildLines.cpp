// Our side of the lines of a child: bench_child_lines read|stall COMMAND...
//
// read: all lines to the end of the output. stall: takes one line of a flood and then none for a second; prints how
// much the memory has grown in that time, and how much the child has been able to write.

#include "../Resident.h"
#include "core/Detach.h"
#include "dev/DevExecutable.h"
#include "dev/DevProcessRegistry.h"
#include "platform/SystemClock.h"

#include <QElapsedTimer>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// The login shell is not asked: that belongs to the first start alone.
std::shared_ptr<lmp::DevProcess> start(const QStringList &command) {
    auto environment = lmp::DevExecutable::childEnvironment(lmp::DevExecutable::ownEnvironment(),
                                                            qEnvironmentVariable("PATH"), qEnvironmentVariable("HOME"));
    auto child = lmp::DevProcess::launch({.program = command.first(), .arguments = command.mid(1)}, environment,
                                         lmp::DevProcessRegistry::shared());
    if (!child) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(child.error().description()));
        std::exit(1);
    }
    return *child;
}

QCoro::Task<> readAll(QStringList command) {
    QElapsedTimer timer;
    timer.start();
    const auto child = start(command);
    auto lines = child->lines();
    qint64 count = 0;
    qint64 bytes = 0;
    qint64 sum = 0;
    while (const auto line = co_await lines.next()) {
        ++count;
        bytes += line->size() + 1;
        sum += line->back() + line->size();
    }
    std::printf("ms=%.1f lines=%lld bytes=%lld sum=%lld\n", static_cast<double>(timer.nsecsElapsed()) / 1e6, count,
                bytes, sum);
    QCoreApplication::quit();
}

QCoro::Task<> stall(QStringList command) {
    lmp::SystemClock clock;
    const auto child = start(command);
    auto lines = child->lines();
    const bool flows = (co_await lines.next()).has_value();
    const long before = lmp::bench::residentKB();
    co_await clock.sleep(1s, {});
    const long growth = std::max(lmp::bench::residentKB() - before, 0L);
    // The flood goes on where it was held: what was not written cannot be taken.
    qint64 taken = 0;
    while (const auto line = lines.tryNext())
        taken += line->size() + 1;
    std::printf("growth_kb=%ld waiting_kb=%lld flows=%d\n", growth, taken / 1024, flows);
    QCoreApplication::quit();
}

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3)
        return 2;
    const QStringList command = arguments.mid(2);
    lmp::detach(arguments[1] == "stall"_L1 ? stall(command) : readAll(command), "the reading");
    return QCoreApplication::exec();
}
