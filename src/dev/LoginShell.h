#pragma once

#include <QString>

#include <chrono>

namespace lmp {

/// The PATH of the person's login shell: a program that a desktop starts has a poor one of its own, in which the tools
/// that people install for themselves are not found.
///
/// The shell is asked once in the life of the process and has three seconds; what it does not answer by then is
/// nothing. What its start files have started by then ends with it. Any thread.
class LoginShell {
public:
    static constexpr std::chrono::milliseconds limit{3000};

    /// The program's own PATH and what the login shell's has on top. Asks, and blocks, the first time.
    static QString applicationPath();
    /// Asks on a thread of its own, so that nobody has to wait later.
    static void prepare();
    /// Whether `applicationPath` answers at once.
    static bool isKnown();

    /// Asks `shell` itself. @return its PATH, or an empty text
    static QString askFor(const QString &shell, std::chrono::milliseconds timeout);
    /// `own` in its order, then what `other` has on top.
    static QString join(const QString &own, const QString &other);
};

} // namespace lmp
