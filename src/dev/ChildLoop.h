#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include <poll.h>

namespace lmp {

class ChildIO;

/// The one thread on which the pipes of all children are read and written.
///
/// One for the process, made with the first child and never ended: what it would do at the process's end, the
/// guardians do without it. Any thread.
class ChildLoop {
public:
    static ChildLoop &shared();

    /// Looks after `child` from now until it is done.
    void add(std::shared_ptr<ChildIO> child);
    /// Has every child asked again what it waits for.
    void wake();

private:
    ChildLoop();
    void run();
    void wait(std::vector<pollfd> &interests);
    void collectAdded();
    void emptyPipe();

    int m_wake[2];
    std::atomic_bool m_woken = false;
    std::mutex m_lock;
    std::vector<std::shared_ptr<ChildIO>> m_added;
    std::vector<std::shared_ptr<ChildIO>> m_children; ///< the loop's own, as is the next
    std::vector<pollfd> m_polled;
};

} // namespace lmp
