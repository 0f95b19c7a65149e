#include "terminal/SignalWatcher.h"

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

void install(void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        ::sigaction(signal, &action, nullptr);
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
    install(&handle);
}

SignalWatcher::~SignalWatcher() {
    install(SIG_DFL);
    writeEnd = -1;
    ::close(m_pipe[0]);
    ::close(m_pipe[1]);
}

} // namespace lmp
