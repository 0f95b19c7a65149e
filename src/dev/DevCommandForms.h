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
/// left out, git's global options left out, paths with their dots worked out, and variables filled in with what the
/// text sets, or left out. Where a quotation ends is easily misjudged, and what is in one may be a command to whatever
/// program it is given to: so each line, and each word that holds more than a word, is read once more by itself.
/// Nothing is executed or looked up on disk.
///
/// The forms are only ever searched for what is forbidden: reading wrongly may ask once too often, or miss a trick that
/// needs a real shell to see through, and never lets through what the plain text would have stopped. A value; any
/// thread.
class DevCommandForms {
public:
    /// Forms beyond this are given up.
    static constexpr std::size_t maxForms = 12 * 16 * 1024;

    /// @param command UTF-8
    /// @param directory where it would run, an absolute path
    /// @param elsewhere that is not where the agent is at home, so that a plain name may be of any file too
    /// @return the forms as one text, apart from each other so that no pattern reaches from one into the next; none
    ///         when there is more to it than is bearable, which must count as a hit
    static std::optional<std::string> of(std::string_view command, std::string_view directory, bool elsewhere = false);
};

} // namespace lmp
