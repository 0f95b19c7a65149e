#include "dev/DevRun.h"

#include "core/PoolAwaiter.h"

#include <QTimer>

namespace lmp {

using namespace std::chrono_literals;

namespace {

constexpr auto endGrace = 1s;

/// Ends a command from whatever thread the stop is asked for on.
struct OnStop {
    std::shared_ptr<DevProcess> process;
    void operator()() const { process->terminate(endGrace); }
};

} // namespace

QCoro::Task<std::expected<DevRun, DevProcess::Failure>>
DevRun::toCompletion(DevProcess::Command command, std::chrono::milliseconds timeout, std::stop_token stop) {
    command.output = DevProcess::Output::Bytes;
    auto launched = co_await PoolAwaiter([command] { return DevProcess::launch(command); });
    if (!launched)
        co_return std::unexpected(launched.error());
    const auto process = *launched;
    process->closeStdin();

    DevRun run;
    QTimer watchdog;
    watchdog.setSingleShot(true);
    QObject::connect(&watchdog, &QTimer::timeout, &watchdog, [&run, &process] {
        run.timedOut = true;
        process->terminate(endGrace);
    });
    watchdog.start(timeout);
    const std::stop_callback onStop(stop, OnStop{process});
    const auto output = process->output();
    while (const auto batch = co_await output.next()) {
        run.output += batch->bytes;
        if (run.output.size() > maxOutput) {
            run.tooLarge = true;
            process->terminate(endGrace);
            output.cancel();
        }
    }
    run.exit = co_await process->exited();
    run.errorText = process->stderrTail();
    co_return std::move(run);
}

} // namespace lmp
