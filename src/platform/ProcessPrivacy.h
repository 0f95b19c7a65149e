#pragma once

#include <QString>

namespace lmp {

/// Keeps what this process knows from the other programs of its user. A coding agent is one of them: it runs as the
/// same user and could otherwise read the environment, the open files and the memory of the program that started it.
/// The system's administrator still can. Free of state.
class ProcessPrivacy {
public:
    /// From now on no other program of the user may look into this one, nor attach to it. The first thing in main: a
    /// program that is started later does not inherit it, and none may be started before.
    static void begin();

    /// The value of an environment variable, which is gone afterwards: from the environment of this program and of its
    /// children, and from what the system shows of it. Empty when it is not set. Before there are other threads that
    /// read the environment without Qt.
    static QString take(const char *name);
};

} // namespace lmp
