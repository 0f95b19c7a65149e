#pragma once

#include <sys/types.h>

namespace lmp {

/// What the guarded child has started and left behind, as far as the platform can tell.
///
/// One for the guardian, its only thread; calls nothing that needs memory. On Linux the guardian is the subreaper, so
/// that every process below it whose parent ends becomes its own child: those can be signalled without a race, because
/// nobody else can reap them. On macOS the processes are found by their parents as they fork, which misses what a
/// parent starts in the instant before its end.
class Descendants {
public:
    Descendants();

    /// The guarded child runs from now on.
    void watch(pid_t child);
    /// Becomes readable when `refresh` has something to do; -1 when it never has.
    int descriptor() const { return m_descriptor; }
    void refresh();

    /// Sends `signal` to everything that can be reached now. Repeated after each end, this reaches everything.
    void signal(int signal);
    /// Whether anything is left that waitpid cannot tell of.
    bool areLeft();

private:
    struct Known {
        pid_t pid = 0;
        long long born = 0; ///< tells a process from a later one with its number
    };
    static constexpr int maxKnown = 1024;

    void add(pid_t pid);

    int m_descriptor = -1;
    Known m_known[maxKnown];
    int m_count = 0;
};

} // namespace lmp
