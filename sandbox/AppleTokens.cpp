#include "AppleTokens.h"

#include "SandboxCrypto.h"
#include "SandboxDatabase.h"
#include "SandboxFailure.h"
#include "SandboxOptions.h"

namespace lmp::sandbox {

AppleTokens::AppleTokens(SandboxDatabase &database, const SandboxOptions &options)
    : m_options(options)
    , m_key(database.secret("apple")) {}

std::string AppleTokens::issue(const std::string &subject, const std::string &email) const {
    boost::json::object claims{
        {"iss", "lumenpair-sandbox-apple"}, {"sub", subject}, {"exp", m_options.now() / 1000 + 600}};
    if (!email.empty())
        claims["email"] = normalizedEmail(email);
    return signToken(claims, m_key);
}

ProviderIdentity AppleTokens::identityOf(const std::string &identityToken) const {
    const auto claims = verifiedClaims(identityToken, m_key);
    if (!claims || claims->at("exp").as_int64() * 1000 <= m_options.now())
        throw SandboxFailure(401, "apple_token_invalid", "Apple 登录没有通过核对，请再试一次。");
    ProviderIdentity identity{"apple", std::string(claims->at("sub").as_string()), {}, {}};
    if (const auto *email = claims->if_contains("email"))
        identity.email = std::string(email->as_string());
    return identity;
}

} // namespace lmp::sandbox
