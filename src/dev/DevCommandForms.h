#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lmp {

/// What a shell may make of a command, as far as reading it tells.
///
/// A pattern that looks for `git push` in the text alone misses `git pu""sh`, `git -C . push` and `git \⏎push`. So a
/// command is also read the way a shell would, roughly: each part of a chain and of each substitution by itself, with
/// quotes and line continuations gone, with `env`, assignments, `nohup` and other such words in front of the program
/// left out, git's global options left out, paths with their dots worked out, and what is given to `sh -c` and `eval`
/// read once more. Nothing is executed, expanded or looked up on disk.
///
/// The forms are only ever searched for what is forbidden: reading wrongly may ask once too often, or miss a trick that
/// needs a real shell to see through, and never lets through what the plain text would have stopped. A value; any
/// thread.
class DevCommandForms {
public:
    /// Forms beyond this are given up.
    static constexpr std::size_t maxForms = 8 * 16 * 1024;

    /// @param command UTF-8
    /// @param directory where it would run, an absolute path
    /// @param elsewhere that is not where the agent is at home, so that a plain name may be of any file too
    /// @return the forms as one text, apart from each other so that no pattern reaches from one into the next; none
    ///         when there is more to it than is bearable, which must count as a hit
    static std::optional<std::string> of(std::string_view command, std::string_view directory, bool elsewhere = false);
};

} // namespace lmp
