#include "Descendants.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace lmp {

namespace {

/// Reads a whole small file of /proc. @return its size, negative when it cannot be read
ssize_t readFile(const char *path, char *buffer, size_t size) {
    const int file = ::open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return -1;
    size_t used = 0;
    for (ssize_t n = 0; used < size - 1 && (n = ::read(file, buffer + used, size - 1 - used)) > 0;)
        used += static_cast<size_t>(n);
    ::close(file);
    buffer[used] = '\0';
    return static_cast<ssize_t>(used);
}

/// @return false where the kernel does not list children
bool signalListed(int signal) {
    char path[64];
    std::snprintf(path, sizeof path, "/proc/self/task/%d/children", static_cast<int>(::getpid()));
    char list[16 * 1024];
    if (readFile(path, list, sizeof list) < 0)
        return false;
    for (char *at = list; *at != '\0';) {
        char *end = nullptr;
        const long pid = std::strtol(at, &end, 10);
        // The last number may have been cut off; the next round sees it whole.
        if (end == at || *end != ' ')
            break;
        ::kill(static_cast<pid_t>(pid), signal);
        at = end + 1;
    }
    return true;
}

/// @return the parent of a process, or 0
pid_t parentOf(const char *pid) {
    char path[300];
    std::snprintf(path, sizeof path, "/proc/%s/stat", pid);
    char stat[1024];
    if (readFile(path, stat, sizeof stat) <= 0)
        return 0;
    // The name, in parentheses, may hold anything; after it come the state and the parent.
    const char *name = std::strrchr(stat, ')');
    int parent = 0;
    return name && std::sscanf(name + 1, " %*c %d", &parent) == 1 ? parent : 0;
}

void signalByParent(int signal) {
    DIR *const processes = ::opendir("/proc");
    if (!processes)
        return;
    const pid_t self = ::getpid();
    while (const dirent *const entry = ::readdir(processes)) {
        const auto pid = static_cast<pid_t>(std::strtol(entry->d_name, nullptr, 10));
        if (pid > 1 && parentOf(entry->d_name) == self)
            ::kill(pid, signal);
    }
    ::closedir(processes);
}

} // namespace

Descendants::Descendants() {
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
}

void Descendants::watch(pid_t) {}

void Descendants::refresh() {}

void Descendants::signal(int signal) {
    if (!signalListed(signal))
        signalByParent(signal);
}

bool Descendants::areLeft() {
    return false;
}

} // namespace lmp
