// Trial sessions without an account: a token and a number of rounds. Owned by SandboxServices; any thread. Failures are
// SandboxFailure.
#pragma once
#include <string>

namespace lmp::sandbox {

class SandboxDatabase;
struct SandboxOptions;

class GuestTrials {
public:
    struct Session {
        std::string token;
        int roundsLeft = 0;
    };

    GuestTrials(SandboxDatabase &database, const SandboxOptions &options);

    Session open();
    /// Throws 401 for an unknown token, 403 "guest_exhausted" when no round is left.
    void requireRound(const std::string &token);
    /// Uses one round up and returns how many are left; throws like requireRound.
    int takeRound(const std::string &token);

private:
    SandboxDatabase &m_database;
    const SandboxOptions &m_options;
};

} // namespace lmp::sandbox
