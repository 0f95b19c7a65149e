#include "dev/DevCommandOptions.h"

#include <algorithm>

namespace lmp {

namespace {

using Words = DevCommandOptions::Words;

/// Behind it there are only names.
Words optionsIn(Words words) {
    return {words.begin(), std::ranges::find(words, "--")};
}

/// @param letters the short forms; any of them will do
/// @param name the long form, which may be cut short
bool hasOption(Words words, std::string_view letters, std::string_view name) {
    constexpr std::size_t shortest = 3;
    return std::ranges::any_of(words, [&](std::string_view word) {
        if (!word.starts_with('-'))
            return false;
        if (word.starts_with("--"))
            return word.size() >= shortest && name.starts_with(word);
        // What follows these letters is their value: a message, a file, a key.
        return word.substr(0, word.find_first_of("mFu")).find_first_of(letters) != std::string_view::npos;
    });
}

} // namespace

std::string DevCommandOptions::gathered(std::string_view program, Words words) {
    const auto options = optionsIn(words);
    if (program == "rm")
        return hasOption(options, "rR", "--recursive") && hasOption(options, "f", "--force") ? "rm -rf" : "";
    if (program == "chmod" || program == "chown")
        return hasOption(options, "R", "--recursive") ? std::string(program) + " -R" : "";
    return {};
}

std::string DevCommandOptions::gatheredOfGit(Words words) {
    if (words.empty())
        return {};
    const std::string_view command = words.front();
    const auto rest = words.subspan(1), options = optionsIn(rest);
    const auto isAll = [](std::string_view name) {
        return name == "." || name == ":/";
    };
    if (command == "reset" && hasOption(options, "", "--hard"))
        return "git reset --hard";
    if (command == "branch" &&
        (hasOption(options, "D", "") || (hasOption(options, "d", "--delete") && hasOption(options, "f", "--force"))))
        return "git branch -D";
    if (command == "tag" && hasOption(options, "d", "--delete"))
        return "git tag -d";
    if (command == "add" && (hasOption(options, "A", "--all") || std::ranges::any_of(rest, isAll)))
        return "git add -A";
    return {};
}

} // namespace lmp
