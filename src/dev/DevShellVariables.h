#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace lmp {

/// The variables that a command sets for itself, as far as reading it tells.
///
/// What is not set in the text counts as empty, which is what most names are. Values are only ever looked at, and only
/// the last one of a name. A value; any thread.
class DevShellVariables {
public:
    enum class Use { Values, Nothing };

    static bool isNameStart(char c) { return c == '_' || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
    static bool isNamePart(char c) { return isNameStart(c) || (c >= '0' && c <= '9'); }

    /// Remembers what `word` sets, when it is an assignment.
    void note(std::string_view word);

    /// @param word without quotes
    /// @param use Nothing: as if all were empty
    /// @return the word with its variables filled in; `${name:-other}` leaves the other, to be filled in once more
    std::string fill(std::string_view word, Use use) const;

private:
    std::string valueOf(std::string_view inBraces, Use use) const;
    std::string_view named(std::string_view name, Use use) const;

    std::map<std::string, std::string, std::less<>> m_values;
};

} // namespace lmp
