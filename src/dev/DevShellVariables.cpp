#include "dev/DevShellVariables.h"

#include <algorithm>

namespace lmp {

namespace {

/// No value that is of use is longer, and a few doublings would otherwise fill memory.
constexpr std::size_t maxValue = 4096;

std::size_t nameLength(std::string_view text) {
    return std::size_t(std::ranges::find_if_not(text, &DevShellVariables::isNamePart) - text.begin());
}

/// Where the brace that is open at the start of `text` closes.
std::size_t closingBrace(std::string_view text) {
    int depth = 1;
    for (std::size_t at = 0; at < text.size(); ++at) {
        depth += text[at] == '{' ? 1 : text[at] == '}' ? -1 : 0;
        if (depth == 0)
            return at;
    }
    return text.size();
}

} // namespace

void DevShellVariables::note(std::string_view word) {
    const auto length = nameLength(word);
    if (length == 0 || !isNameStart(word.front()))
        return;
    const auto name = word.substr(0, length), rest = word.substr(length);
    const bool adds = rest.starts_with("+=");
    if (!adds && !rest.starts_with('='))
        return;
    std::string value = fill(rest.substr(adds ? 2 : 1), Use::Values);
    if (adds)
        value.insert(0, named(name, Use::Values));
    value.resize(std::min(value.size(), maxValue));
    m_values.insert_or_assign(std::string(name), std::move(value));
}

std::string DevShellVariables::fill(std::string_view word, Use use) const {
    std::string filled;
    while (!word.empty()) {
        const auto dollar = std::min(word.find('$'), word.size());
        filled += word.substr(0, dollar);
        word.remove_prefix(std::min(dollar + 1, word.size()));
        if (word.starts_with('{')) {
            word.remove_prefix(1);
            const auto end = closingBrace(word);
            filled += valueOf(word.substr(0, end), use);
            word.remove_prefix(std::min(end + 1, word.size()));
        } else if (!word.empty() && isNameStart(word.front())) {
            const auto length = nameLength(word);
            filled += named(word.substr(0, length), use);
            word.remove_prefix(length);
        } else if (!word.empty() && std::string_view("!@*0123456789").contains(word.front())) {
            word.remove_prefix(1);
        }
    }
    return filled;
}

std::string_view DevShellVariables::named(std::string_view name, Use use) const {
    const auto found = use == Use::Values ? m_values.find(name) : m_values.end();
    return found == m_values.end() ? std::string_view() : found->second;
}

/// What `${...}` leaves: the word behind `-`, `=` and `+` where it may count, else the value, uncut.
std::string DevShellVariables::valueOf(std::string_view inBraces, Use use) const {
    if (inBraces.size() > 1 && std::string_view("!#").contains(inBraces.front()))
        inBraces.remove_prefix(1);
    const auto length = nameLength(inBraces);
    const auto value = named(inBraces.substr(0, length), use);
    auto rest = inBraces.substr(length);
    if (rest.starts_with(':'))
        rest.remove_prefix(1);
    const bool isOther = rest.starts_with('+') || (value.empty() && (rest.starts_with('-') || rest.starts_with('=')));
    return std::string(isOther ? rest.substr(1) : value);
}

} // namespace lmp
