#include "SpeechSynthesizer.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace lmp::sandbox {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::size_t mostBytes = 24 * 1024 * 1024;

/// The program, with its standard input and output on one socket: writing to one that is gone is no signal then.
struct Child {
    pid_t pid = -1;
    int fd = -1;

    Child() = default;
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;
    ~Child() {
        if (fd >= 0)
            ::close(fd);
        if (pid > 0) {
            ::kill(pid, SIGKILL);
            int status = 0;
            ::waitpid(pid, &status, 0);
        }
    }

    /// @return errno of what failed, or 0
    int start(const std::string &program) {
        int ends[2];
        if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0)
            return errno;
        fd = ends[0];
        ::fcntl(fd, F_SETFD, FD_CLOEXEC);
        ::fcntl(ends[1], F_SETFD, FD_CLOEXEC);
        ::fcntl(fd, F_SETFL, O_NONBLOCK);
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, ends[1], 0);
        ::posix_spawn_file_actions_adddup2(&actions, ends[1], 1);
        ::posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
        std::string words[] = {program, "-v", SpeechSynthesizer::voice, "-b", "1", "--stdin", "--stdout"};
        char *arguments[std::size(words) + 1] = {};
        for (std::size_t i = 0; i < std::size(words); ++i)
            arguments[i] = words[i].data();
        const int failed = ::posix_spawnp(&pid, program.c_str(), &actions, nullptr, arguments, environ);
        ::posix_spawn_file_actions_destroy(&actions);
        ::close(ends[1]);
        if (failed)
            pid = -1;
        return failed;
    }

    /// Whether it ended well, after its output has; waits as long as `until`.
    bool ended(Clock::time_point until) {
        int status = 0;
        pid_t done = 0;
        while ((done = ::waitpid(pid, &status, WNOHANG)) == 0 && Clock::now() < until)
            ::poll(nullptr, 0, 2);
        if (done == pid)
            pid = -1;
        return done > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
};

/// Writes `text`, reads to the end. @return false when the time or the room is over
bool exchange(int fd, const std::string &text, std::string &sound, Clock::time_point until) {
    std::size_t written = 0;
    char buffer[64 * 1024];
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until - Clock::now()).count();
        pollfd wait{fd, short(POLLIN | (written < text.size() ? POLLOUT : 0)), 0};
        if (left <= 0 || ::poll(&wait, 1, int(left)) <= 0)
            return false;
        if (wait.revents & POLLOUT) {
            const auto count = ::send(fd, text.data() + written, text.size() - written, MSG_NOSIGNAL);
            if (count < 0 && errno != EAGAIN && errno != EINTR)
                return false;
            written += count > 0 ? std::size_t(count) : 0;
            if (written == text.size())
                ::shutdown(fd, SHUT_WR);
        }
        if (wait.revents & (POLLIN | POLLHUP)) {
            const auto count = ::read(fd, buffer, sizeof buffer);
            if (count == 0)
                return true;
            if (count < 0 && errno != EAGAIN && errno != EINTR)
                return false;
            sound.append(buffer, count > 0 ? std::size_t(count) : 0);
            if (sound.size() > mostBytes)
                return false;
        }
    }
}

void putLength(std::string &wav, std::size_t at, std::size_t length) {
    for (int byte = 0; byte < 4; ++byte)
        wav[at + std::size_t(byte)] = char((std::uint32_t(length) >> (8 * byte)) & 0xff);
}

/// What is written to a pipe does not know its length at the beginning.
bool completeHeader(std::string &wav) {
    if (wav.size() < 44 || wav.compare(0, 4, "RIFF") != 0 || wav.compare(36, 4, "data") != 0)
        return false;
    putLength(wav, 4, wav.size() - 8);
    putLength(wav, 40, wav.size() - 44);
    return true;
}

} // namespace

SpeechSynthesizer::Outcome SpeechSynthesizer::speak(const std::string &text) const {
    const auto until = Clock::now() + m_limit;
    Child child;
    if (const int failed = child.start(m_program))
        return {{}, failed == ENOENT || failed == EACCES ? Failure::notInstalled : Failure::failed};
    std::string sound;
    if (!exchange(child.fd, text + "\n", sound, until) || !child.ended(until) || !completeHeader(sound))
        return {{}, Failure::failed};
    return {std::move(sound), {}};
}

} // namespace lmp::sandbox
