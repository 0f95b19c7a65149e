// Identity tokens in Apple's place, for trying that way of signing in. Owned by SandboxServices; any thread.
#pragma once
#include "SandboxAccounts.h"

namespace lmp::sandbox {

class AppleTokens {
public:
    AppleTokens(SandboxDatabase &database, const SandboxOptions &options);

    /// A token good for ten minutes; the e-mail may be empty.
    std::string issue(const std::string &subject, const std::string &email) const;
    /// Throws SandboxFailure 401 "apple_token_invalid".
    ProviderIdentity identityOf(const std::string &identityToken) const;

private:
    const SandboxOptions &m_options;
    std::string m_key;
};

} // namespace lmp::sandbox
