#pragma once

#include <cstdint>

namespace lmp {

/// What the program and the guardian of one child say to each other, over the socket that the guardian has as its
/// descriptor 3. Fixed size, same machine. When the program's end closes, the program is gone; when the guardian's end
/// closes, nothing of the child is left.
struct GuardianMessage {
    enum Kind : std::int32_t {
        Stop,            ///< to the guardian; value: milliseconds until the kill
        Started,         ///< value: the child's process id
        FailedDirectory, ///< the working directory cannot be entered; value: errno
        FailedProgram,   ///< the program cannot be run; value: errno
        Exited           ///< the child has ended, what it has started may not have; value: its wait status
    };
    std::int32_t kind = Stop;
    std::int32_t value = 0;
};

inline constexpr int guardianControl = 3;

} // namespace lmp
