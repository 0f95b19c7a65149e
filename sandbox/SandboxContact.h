// Phone numbers, e-mail addresses and passwords as the sandbox accepts them. Pure functions; any thread. All throw
// SandboxFailure 400 with the sentence a person reads.
#pragma once
#include <string>

namespace lmp::sandbox {

struct PhoneNumber {
    std::string dialCode; ///< "+86"
    std::string digits;
};

/// Digits only; mainland numbers have eleven, others 6 to 15. An empty dial code means "+86".
PhoneNumber normalizedPhone(const std::string &phone, const std::string &dialCode);
/// Lower case, one "@" with something on both sides.
std::string normalizedEmail(const std::string &email);
void requireUsablePassword(const std::string &password);

} // namespace lmp::sandbox
