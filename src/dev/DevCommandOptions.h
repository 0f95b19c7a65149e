#pragma once

#include <span>
#include <string>
#include <string_view>

namespace lmp {

/// The options of a command, gathered where a fixed expression looks for them: a program takes them anywhere, one by
/// one or in a row, short or spelt out. Free of state; any thread.
class DevCommandOptions {
public:
    using Words = std::span<const std::string>;

    /// @param words what follows the program's name
    /// @return the command with the options that make it dangerous in front; empty when it has none
    static std::string gathered(std::string_view program, Words words);
    /// The same of git.
    /// @param words its command and what follows that
    static std::string gatheredOfGit(Words words);
};

} // namespace lmp
