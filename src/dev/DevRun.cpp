#include "dev/DevRun.h"

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

/// What a command prints, cancelled when whoever waits for it goes.
struct Output {
    Channel<DevLines::Batch> channel;
    explicit Output(Channel<DevLines::Batch> from)
        : channel(std::move(from)) {}
    ~Output() { channel.cancel(); }
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;
};

} // namespace

QCoro::Task<std::expected<DevRun, DevProcess::Failure>>
DevRun::toCompletion(DevProcess::Command command, std::chrono::milliseconds timeout, std::stop_token stop) {
    command.output = DevProcess::Output::Bytes;
    const auto launched = (co_await DevProcess::start(std::move(command))).process;
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
    const Output taken{process->output()};
    const auto &output = taken.channel;
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
