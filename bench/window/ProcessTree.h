#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace lmp::bench {

/// A started command and everything it started in turn, children that lost their parent included.
///
/// One a process, whose descendants it takes over. Reads /proc, so Linux only; a process that ends meanwhile counts
/// nothing.
class ProcessTree {
public:
    /// What all processes of the tree use together.
    struct Use {
        long pssKiB = 0; ///< shared pages by halves, thirds and so on
        int processes = 0;
        int threads = 0;
        long ticks = 0; ///< of the clock that counts CPU time; see sysconf(_SC_CLK_TCK)
    };

    /// Starts `command` away from this process's standard streams, unless `heard`.
    /// @throws std::system_error when it cannot be started
    ProcessTree(const std::vector<std::string> &command, bool heard);
    /// Asks all of them to end, then ends them.
    ~ProcessTree();
    ProcessTree(const ProcessTree &) = delete;
    ProcessTree &operator=(const ProcessTree &) = delete;

    /// Whether any is left.
    bool alive() const;
    Use use() const;

private:
    static std::vector<pid_t> members();
};

} // namespace lmp::bench
