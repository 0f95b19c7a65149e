// Plays Google's part in signing in: the consent page, codes bound to a PKCE challenge, signed id tokens. Codes live in
// memory for a minute and work once. Every e-mail is a stable subject. Owned by SandboxServices; any thread. Nothing of
// it is meant to be secure against the person at this machine.
#pragma once
#include "FormText.h"
#include "SandboxAccounts.h"
#include "SandboxAnswer.h"
#include <map>
#include <mutex>

namespace lmp::sandbox {

class GoogleProvider {
public:
    GoogleProvider(SandboxDatabase &database, const SandboxOptions &options);

    /// The consent page, or at once the redirect when the query names an `auto` e-mail. What must not be redirected to
    /// is answered with a page that says why (400).
    SandboxAnswer authorize(const FormFields &query);
    /// The decision made on the page: the fields of authorize, `email`, and `decision` "allow" or "deny".
    SandboxAnswer decide(const FormFields &form);
    /// Changes a code and its verifier for an id token; OAuth's own error codes (400).
    SandboxAnswer token(const FormFields &form);

    /// Who an id token speaks of; throws SandboxFailure 401 "google_token_invalid". `nonce` is compared when not empty.
    ProviderIdentity identityOf(const std::string &idToken, const std::string &nonce) const;

    /// True for http:// on 127.0.0.1 or [::1] with a port, and nothing that could mean another host.
    static bool isLoopback(const std::string &redirectUri);

private:
    struct Grant {
        std::string clientId;
        std::string redirectUri;
        std::string challenge;
        std::string nonce;
        std::string email;
        std::int64_t expiresAt = 0;
    };

    std::string objection(const FormFields &query) const;
    SandboxAnswer grant(const FormFields &query, const std::string &email);

    const SandboxOptions &m_options;
    std::string m_key;
    std::mutex m_mutex;
    std::map<std::string, Grant> m_grants;
};

} // namespace lmp::sandbox
