#pragma once

#include <array>

namespace lmp {

/// Makes system calls of this thread fail. A program that links with --wrap for each of them (see lmp_wrap_calls) has
/// its own calls go through here; libraries that are loaded are not touched.
class FailingCalls {
public:
    enum class Call { Mkdir, Open, Flock, Fstat, Read, Write, Fsync, Close, Rename, Swap, Unlink, Count };

    struct Plan {
        Call call = Call::Count;
        int number = 0;      ///< the first that fails, counted from 0 since it was armed
        bool onward = false; ///< and all after it
        int code = 0;        ///< errno, or 0 for a write that takes half of what it is given
    };

    /// Counts from 0 again; a plan of no call only counts.
    static void arm(const Plan &plan);
    static void disarm();
    static int count(Call call);
    /// The bits beyond the owner's that a file was made with since it was armed.
    static unsigned widest();
};

} // namespace lmp
