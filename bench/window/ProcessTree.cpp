#include "ProcessTree.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace lmp::bench {

namespace {

struct Stat {
    pid_t parent = 0;
    long ticks = 0;
    int threads = 0;
};

std::optional<Stat> statOf(pid_t pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string line;
    if (!std::getline(file, line))
        return std::nullopt;
    // The name of the program stands in parentheses and may hold anything; the numbers follow the last one.
    const auto end = line.rfind(')');
    if (end == std::string::npos)
        return std::nullopt;
    std::istringstream words(line.substr(end + 1));
    std::vector<std::string> fields;
    for (std::string word; words >> word;)
        fields.push_back(word);
    if (fields.size() < 18 || fields[0] == "Z")
        return std::nullopt;
    return Stat{.parent = std::stoi(fields[1]),
                .ticks = std::stol(fields[11]) + std::stol(fields[12]),
                .threads = std::stoi(fields[17])};
}

long pssOf(pid_t pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/smaps_rollup");
    // Nothing would look better than it is.
    if (!file && (errno == EACCES || errno == EPERM))
        throw std::system_error(errno, std::generic_category(),
                                "the program keeps its memory private: measure as root");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("Pss:"))
            return std::stol(line.substr(4));
    }
    return 0;
}

void reap() {
    while (::waitpid(-1, nullptr, WNOHANG) > 0) {
    }
}

} // namespace

ProcessTree::ProcessTree(const std::vector<std::string> &command, bool heard) {
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
    std::vector<char *> words;
    for (const auto &word : command)
        words.push_back(const_cast<char *>(word.c_str()));
    words.push_back(nullptr);
    const pid_t pid = ::fork();
    if (pid < 0)
        throw std::system_error(errno, std::generic_category(), "fork");
    if (pid > 0)
        return;
    const int nothing = ::open("/dev/null", O_RDWR);
    ::dup2(nothing, STDIN_FILENO);
    ::dup2(heard ? STDERR_FILENO : nothing, STDOUT_FILENO);
    if (!heard)
        ::dup2(nothing, STDERR_FILENO);
    ::setsid();
    ::execvp(words[0], words.data());
    ::_exit(127);
}

ProcessTree::~ProcessTree() {
    for (const int signal : {SIGTERM, SIGKILL}) {
        for (const pid_t pid : members())
            ::kill(pid, signal);
        for (int tries = 0; tries < 30 && alive(); ++tries) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            reap();
        }
    }
    reap();
}

std::vector<pid_t> ProcessTree::members() {
    std::multimap<pid_t, pid_t> children;
    for (const auto &entry : std::filesystem::directory_iterator("/proc")) {
        const pid_t pid = std::atoi(entry.path().filename().c_str());
        if (const auto stat = pid > 0 ? statOf(pid) : std::nullopt)
            children.emplace(stat->parent, pid);
    }
    std::vector<pid_t> found;
    std::vector<pid_t> open = {::getpid()};
    while (!open.empty()) {
        const auto [first, last] = children.equal_range(open.back());
        open.pop_back();
        for (auto child = first; child != last; ++child) {
            found.push_back(child->second);
            open.push_back(child->second);
        }
    }
    return found;
}

bool ProcessTree::alive() const {
    reap();
    return !members().empty();
}

ProcessTree::Use ProcessTree::use() const {
    Use all;
    for (const pid_t pid : members()) {
        if (const auto stat = statOf(pid)) {
            all.pssKiB += pssOf(pid);
            all.processes += 1;
            all.threads += stat->threads;
            all.ticks += stat->ticks;
        }
    }
    return all;
}

} // namespace lmp::bench
