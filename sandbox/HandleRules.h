// What a handle may look like, and ideas for one. Pure; any thread.
#pragma once
#include "SandboxAccount.h"
#include <vector>

namespace lmp::sandbox {

class HandleRules {
public:
    /// Lower case, without blanks around it and a leading "@".
    static std::string normalized(const std::string &input);
    /// Why a normalized handle cannot be used, in Chinese; empty when it can.
    static std::string objection(const std::string &handle);
    /// The handle of that person's twin.
    static std::string twinOf(const std::string &handle);
    /// Usable handles made from what the account holds, best first; whether they are free is not known here.
    static std::vector<std::string> candidates(const SandboxAccount &account);
};

} // namespace lmp::sandbox
