#pragma once

#include "Descendants.h"
#include "GuardianMessage.h"

#include <ctime>

namespace lmp {

/// Stands between the program and one of its children: starts it in a session of its own, ends it when it is asked to
/// or when the program is gone, and stays until nothing is left of what the child has started.
///
/// One for the process, which has one thread and keeps nothing open but the socket to the program. Its calls report
/// what fails to the program, where there is one.
class Guardian {
public:
    Guardian();

    /// @param directory the child's working directory; empty: this one's
    /// @param arguments the child's, the first of them its path
    /// @return false when it could not be started, and the program has been told
    bool start(const char *directory, char **arguments);
    /// Returns when nothing is left that this user may end.
    void guard();

private:
    enum class Phase {
        Running,
        Ending,  ///< asked politely, until the deadline
        Clearing ///< being killed
    };

    [[noreturn]] void runChild(pid_t guardian, const char *directory, char **arguments, int report);
    void wait();
    void readControl();
    void reap();
    void askToEnd(long milliseconds);
    void signalAll(int signal);
    void tell(GuardianMessage::Kind kind, int value);
    long long untilNextStep() const;

    Descendants m_descendants;
    pid_t m_child = -1; ///< until it is reaped
    Phase m_phase = Phase::Running;
    long long m_deadline = 0; ///< of the ending, in milliseconds
    bool m_programGone = false;
    bool m_nothingLeft = false;
};

} // namespace lmp
