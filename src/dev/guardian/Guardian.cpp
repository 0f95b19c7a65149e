#include "Guardian.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

extern char **environ;

namespace lmp {

namespace {

/// After the program's own end. What is left is gone within two seconds even when each level of it is deaf.
constexpr long graceWithoutProgram = 700;
/// For what a child that has ended by itself leaves behind.
constexpr long graceForRest = 250;
/// Between two rounds of killing when nobody reports an end.
constexpr long long killInterval = 20;

/// How long processes are killed that do not go: those of another user, which a child may have become with sudo.
constexpr long long patience = 10000;

volatile std::sig_atomic_t askedBySignal = 0;

void onSignal(int signal) {
    if (signal == SIGTERM)
        askedBySignal = 1;
}

void handle(int signal, void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    ::sigaction(signal, &action, nullptr);
}

long long now() {
    timespec time = {};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<long long>(time.tv_sec) * 1000 + time.tv_nsec / 1000000;
}

sigset_t awaited() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGCHLD);
    sigaddset(&set, SIGTERM);
    return set;
}

} // namespace

Guardian::Guardian() {
    // A closed terminal or a Ctrl-C is for the program to judge, which then says so.
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTSTP, SIGTTIN, SIGTTOU})
        handle(signal, SIG_IGN);
    handle(SIGCHLD, &onSignal);
    handle(SIGTERM, &onSignal);
    // They arrive in wait() alone.
    const sigset_t set = awaited();
    ::sigprocmask(SIG_BLOCK, &set, nullptr);
    ::fcntl(guardianControl, F_SETFD, FD_CLOEXEC);
    ::fcntl(guardianControl, F_SETFL, O_NONBLOCK);
}

bool Guardian::start(const char *directory, char **arguments) {
    int report[2];
    if (::pipe(report) != 0) {
        tell(GuardianMessage::FailedProgram, errno);
        return false;
    }
    for (const int end : report)
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    const pid_t self = ::getpid();
    m_child = ::fork();
    if (m_child < 0) {
        tell(GuardianMessage::FailedProgram, errno);
        return false;
    }
    if (m_child == 0)
        runChild(self, directory, arguments, report[1]);
    ::close(report[1]);
    // The pipes are the child's. Kept open here, they would hide its end from the program.
    const int null = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    for (const int stream : {0, 1, 2})
        ::dup2(null, stream);
    ::close(null);
    GuardianMessage failure;
    const bool failed = ::read(report[0], &failure, sizeof failure) == static_cast<ssize_t>(sizeof failure);
    ::close(report[0]);
    if (failed) {
        ::waitpid(m_child, nullptr, 0);
        tell(static_cast<GuardianMessage::Kind>(failure.kind), failure.value);
        return false;
    }
    if (::chdir("/") != 0) {
        // It then holds the directory it was started in, and nothing else is worse for it.
    }
    m_descendants.watch(m_child);
    tell(GuardianMessage::Started, m_child);
    return true;
}

void Guardian::runChild(pid_t guardian, const char *directory, char **arguments, int report) {
    ::setsid();
#ifdef __linux__
    // Should somebody kill this guardian, its child at least goes too. (Its only thread is the one that forks.)
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
    // It may have been before that could take effect.
    if (::getppid() != guardian)
        ::_exit(127);
    for (int signal = 1; signal < NSIG; ++signal)
        handle(signal, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    GuardianMessage failure = {GuardianMessage::FailedDirectory, 0};
    if (*directory == '\0' || ::chdir(directory) == 0) {
        ::execve(arguments[0], arguments, environ);
        failure.kind = GuardianMessage::FailedProgram;
    }
    failure.value = errno;
    [[maybe_unused]] const ssize_t written = ::write(report, &failure, sizeof failure);
    ::_exit(127);
}

void Guardian::guard() {
    reap();
    while (!m_nothingLeft) {
        wait();
        if (!m_programGone)
            readControl();
        if (askedBySignal) {
            askedBySignal = 0;
            askToEnd(graceWithoutProgram);
        }
        reap();
        if (m_phase == Phase::Ending && now() >= m_deadline)
            m_phase = Phase::Clearing;
        if (m_phase == Phase::Clearing && !m_nothingLeft) {
            if (now() >= m_deadline + patience)
                return;
            signalAll(SIGKILL);
        }
    }
}

/// Sleeps until a process ends, the program says something, or it is time for the next step.
void Guardian::wait() {
    fd_set readable;
    FD_ZERO(&readable);
    if (!m_programGone)
        FD_SET(guardianControl, &readable);
    const int descendants = m_descendants.descriptor();
    if (descendants >= 0)
        FD_SET(descendants, &readable);
    const long long wait = untilNextStep();
    timespec timeout = {};
    timeout.tv_sec = static_cast<time_t>(wait / 1000);
    timeout.tv_nsec = static_cast<long>(wait % 1000) * 1000000;
    sigset_t none;
    sigemptyset(&none);
    ::pselect(std::max(guardianControl, descendants) + 1, &readable, nullptr, nullptr, wait < 0 ? nullptr : &timeout,
              &none);
    m_descendants.refresh();
}

/// @return milliseconds; negative: there is none
long long Guardian::untilNextStep() const {
    switch (m_phase) {
    case Phase::Running:
        return -1;
    case Phase::Ending:
        return std::max(m_deadline - now(), 0LL);
    case Phase::Clearing:
        break;
    }
    return killInterval;
}

void Guardian::readControl() {
    for (;;) {
        GuardianMessage message;
        const ssize_t size = ::recv(guardianControl, &message, sizeof message, 0);
        if (size == static_cast<ssize_t>(sizeof message)) {
            if (message.kind == GuardianMessage::Stop)
                askToEnd(message.value);
        } else if (size < 0 && (errno == EAGAIN || errno == EINTR)) {
            return;
        } else {
            m_programGone = true;
            askToEnd(graceWithoutProgram);
            return;
        }
    }
}

void Guardian::reap() {
    for (;;) {
        int status = 0;
        const pid_t ended = ::waitpid(-1, &status, WNOHANG);
        if (ended < 0 && errno == EINTR)
            continue;
        if (ended <= 0) {
            m_nothingLeft = ended < 0 && !m_descendants.areLeft();
            break;
        }
        if (ended != m_child)
            continue;
        m_child = -1;
        tell(GuardianMessage::Exited, status);
    }
    // Whoever is left when the child is gone is asked too, each in its turn as its parent ends.
    if (m_child < 0 && !m_nothingLeft && m_phase != Phase::Clearing) {
        if (m_phase == Phase::Running) {
            m_phase = Phase::Ending;
            m_deadline = now() + graceForRest;
        } else {
            m_deadline = std::min(m_deadline, now() + graceForRest);
        }
        signalAll(SIGTERM);
    }
}

void Guardian::askToEnd(long milliseconds) {
    if (m_phase == Phase::Clearing)
        return;
    const long long deadline = now() + std::max(milliseconds, 0L);
    m_deadline = m_phase == Phase::Running ? deadline : std::min(m_deadline, deadline);
    m_phase = Phase::Ending;
    signalAll(SIGTERM);
}

/// The child's group while the child is there to keep its number from being given to another; then whatever became
/// ours.
void Guardian::signalAll(int signal) {
    if (m_child > 0) {
        ::kill(-m_child, signal);
        if (signal == SIGTERM)
            ::kill(-m_child, SIGCONT);
        if (signal != SIGKILL)
            return;
    }
    m_descendants.signal(signal);
    if (signal == SIGTERM)
        m_descendants.signal(SIGCONT);
}

void Guardian::tell(GuardianMessage::Kind kind, int value) {
    const GuardianMessage message = {kind, value};
    [[maybe_unused]] const ssize_t sent = ::send(guardianControl, &message, sizeof message, 0);
}

} // namespace lmp
