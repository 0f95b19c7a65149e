// The few cryptographic operations the sandbox needs, over OpenSSL: random ids, digests, password hashes and signed
// tokens. Pure functions; any thread. They throw std::runtime_error when the library itself fails.
#pragma once
#include <boost/json.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace lmp::sandbox {

/// `bytes` random bytes as lower-case hexadecimal digits.
std::string randomHex(std::size_t bytes);
/// A code of six decimal digits.
std::string randomDigits();

std::string sha256Hex(std::string_view data);
std::string base64Url(std::string_view data);
/// With padding, as it stands in JSON.
std::string base64(std::string_view data);
/// The S256 challenge of a PKCE verifier.
std::string pkceChallenge(std::string_view verifier);
/// Compares without telling by its duration where the texts differ.
bool sameSecret(std::string_view a, std::string_view b);

/// PBKDF2-HMAC-SHA256 with a salt of its own, parameters written in front.
std::string hashPassword(std::string_view password);
/// False for a wrong password and for a hash nobody here wrote.
bool passwordMatches(std::string_view password, std::string_view hash);

/// A JSON web token, signed with HMAC-SHA256.
std::string signToken(const boost::json::object &claims, std::string_view key);
/// The claims when the signature holds; expiry and audience are the caller's business.
std::optional<boost::json::object> verifiedClaims(std::string_view token, std::string_view key);

} // namespace lmp::sandbox
