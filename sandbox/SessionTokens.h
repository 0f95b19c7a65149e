// Session tokens: handed out once, kept as digests only, good until the state file goes. Owned by SandboxServices; any
// thread.
#pragma once
#include <string>

namespace lmp::sandbox {

class SandboxDatabase;
struct SandboxOptions;
struct SandboxRequest;

class SessionTokens {
public:
    SessionTokens(SandboxDatabase &database, const SandboxOptions &options);

    std::string issue(const std::string &userId);
    /// The id of the signed-in user; throws SandboxFailure 401 when the token is missing or unknown.
    std::string userOf(const SandboxRequest &request);

private:
    SandboxDatabase &m_database;
    const SandboxOptions &m_options;
};

} // namespace lmp::sandbox
