// Codes sent by SMS and e-mail, which the sandbox hands back to the client instead. A code belongs to one purpose and
// one target, lives five minutes, allows five wrong tries and works once. Owned by SandboxServices; any thread.
#pragma once
#include <string>

namespace lmp::sandbox {

class SandboxDatabase;
struct SandboxOptions;

class VerificationCodes {
public:
    VerificationCodes(SandboxDatabase &database, const SandboxOptions &options);

    /// A new code; an earlier one for the same purpose and target stops working.
    std::string issue(const std::string &purpose, const std::string &target);
    /// Uses the code up. Throws SandboxFailure 400 when it is wrong, expired or used, 429 after too many wrong tries.
    void redeem(const std::string &purpose, const std::string &target, const std::string &code);

private:
    SandboxDatabase &m_database;
    const SandboxOptions &m_options;
};

} // namespace lmp::sandbox
