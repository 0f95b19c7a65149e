#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lmp {

/// A shell command taken apart: its simple commands with their words, and the texts of its substitutions.
///
/// Reads as a shell reads, without expanding anything: quotes and escapes go, line continuations join, `$(...)` and
/// backticks leave nothing behind, and neither do the variables that are usually empty; the others stay, as `${name}`.
/// What is left open extends to the end, and the lines of a here-document count as commands, so that an apostrophe in
/// one opens a quotation: whoever must not miss a command reads each line by itself as well. A value; any thread.
struct DevShellText {
    struct Part {
        std::vector<std::string> words;
        std::vector<std::string> targets; ///< what it is redirected to or from
    };
    std::vector<Part> parts;
    std::vector<std::string> nested; ///< inside substitutions, to be read like the whole

    static DevShellText read(std::string_view text);
};

} // namespace lmp
