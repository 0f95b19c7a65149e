#include "HandleRules.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace lmp::sandbox {

namespace {

constexpr std::array<std::string_view, 8> reserved{"admin",   "root", "system", "lumenpair",
                                                   "support", "twin", "me",     "api"};

bool isLetter(char c) {
    return c >= 'a' && c <= 'z';
}

bool isHandleByte(char c) {
    return isLetter(c) || (c >= '0' && c <= '9') || c == '_';
}

} // namespace

std::string HandleRules::normalized(const std::string &input) {
    std::string handle;
    for (const char c : input)
        handle += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    handle.erase(0, std::min(handle.find_first_not_of(" \t\r\n@"), handle.size()));
    handle.resize(handle.find_last_not_of(" \t\r\n") + 1);
    return handle;
}

std::string HandleRules::objection(const std::string &handle) {
    if (handle.size() < 3 || handle.size() > 20)
        return "名字需要 3 到 20 个字符。";
    if (!std::all_of(handle.begin(), handle.end(), isHandleByte))
        return "名字只能用英文字母、数字和下划线。";
    if (!isLetter(handle.front()))
        return "名字要以字母开头。";
    if (std::find(reserved.begin(), reserved.end(), handle) != reserved.end())
        return "这个名字保留给系统使用。";
    return {};
}

std::string HandleRules::twinOf(const std::string &handle) {
    return handle + ".twin";
}

std::vector<std::string> HandleRules::candidates(const SandboxAccount &account) {
    std::string base;
    for (const char c : normalized(account.email.substr(0, account.email.find('@'))))
        if (isHandleByte(c) && base.size() < 14)
            base += c;
    if (base.empty() || !isLetter(base.front()))
        base.insert(0, 1, 'u');
    const auto tail = account.id.substr(account.id.size() - 4);
    const std::string withTail = base + "_" + tail;
    std::vector<std::string> result;
    for (const auto &candidate : {base, withTail, "hi_" + base, base + tail, "lmp_" + tail})
        if (objection(candidate).empty())
            result.push_back(candidate);
    return result;
}

} // namespace lmp::sandbox
