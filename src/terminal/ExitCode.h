#pragma once

namespace lmp {

/// What the program's exit status says to a script.
enum class ExitCode {
    Submitted = 0,
    Failed = 1, ///< and nothing was charged
    Usage = 2,
    NotSignedIn = 3,
    Unknown = 4, ///< the outcome, and whether it was charged, is not known
    Stopped = 130
};

} // namespace lmp
