#pragma once

#include <string_view>

namespace lmp {

/// The two tests that a command or a path is put to: does it touch a place where secrets are kept, and is it a command
/// that always asks.
///
/// The expressions are compiled once, at the first use; one that does not compile is skipped. They run on an automaton
/// whose time is linear in the text, so that no text delays a verdict and no match can fail half-way. Any thread.
class DevPatterns {
public:
    /// A text beyond this is not looked at; it counts as a hit.
    static constexpr std::size_t maxText = 16 * 1024;

    /// @param text UTF-8
    static bool isSensitive(std::string_view text);
    static bool isRisky(std::string_view text);
};

} // namespace lmp
