#include "platform/SignalWatcher.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace lmp {

namespace {

int writeEnd = -1;

// Only what POSIX calls async-signal-safe may happen in here.
void handle(int signal) {
    const int saved = errno;
    const auto byte = static_cast<char>(signal);
    [[maybe_unused]] const ssize_t n = ::write(writeEnd, &byte, 1);
    errno = saved;
}

int openPipe(int (&ends)[2]) {
    if (::pipe(ends) != 0)
        return -1;
    for (const int end : ends) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    writeEnd = ends[1];
    return ends[0];
}

/// SIGQUIT too: it would end the program at a prompt and leave the terminal without echo.
constexpr std::array signals{SIGINT, SIGTERM, SIGHUP, SIGQUIT};
std::array<struct sigaction, signals.size()> former;

void install() {
    struct sigaction action = {};
    action.sa_handler = &handle;
    action.sa_flags = SA_RESTART;
    for (std::size_t at = 0; at < signals.size(); ++at) {
        ::sigaction(signals[at], nullptr, &former[at]);
        // Whoever started us so that it is ignored (nohup) means it.
        if (former[at].sa_handler != SIG_IGN)
            ::sigaction(signals[at], &action, nullptr);
    }
}

void restore() {
    for (std::size_t at = 0; at < signals.size(); ++at)
        ::sigaction(signals[at], &former[at], nullptr);
}

} // namespace

SignalWatcher::SignalWatcher(QObject *parent)
    : QObject(parent)
    , m_pipe{-1, -1}
    , m_notifier(openPipe(m_pipe), QSocketNotifier::Read) {
    connect(&m_notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        while (::read(m_pipe[0], &byte, 1) == 1)
            Q_EMIT caught(byte);
    });
    install();
}

SignalWatcher::~SignalWatcher() {
    restore();
    writeEnd = -1;
    ::close(m_pipe[0]);
    ::close(m_pipe[1]);
}

} // namespace lmp
