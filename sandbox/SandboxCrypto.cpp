#include "SandboxCrypto.h"

#include <array>
#include <charconv>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>
#include <stdexcept>
#include <vector>

namespace lmp::sandbox {

namespace {

constexpr int passwordRounds = 120'000;
constexpr std::size_t digestSize = 32;

const unsigned char *bytesOf(std::string_view text) {
    return reinterpret_cast<const unsigned char *>(text.data());
}

std::string toHex(std::string_view data) {
    static constexpr char hex[] = "0123456789abcdef";
    std::string result;
    for (const unsigned char c : data)
        result.append({hex[c >> 4], hex[c & 15]});
    return result;
}

std::string randomBytes(std::size_t count) {
    std::string bytes(count, '\0');
    if (RAND_bytes(reinterpret_cast<unsigned char *>(bytes.data()), static_cast<int>(count)) != 1)
        throw std::runtime_error("no random bytes");
    return bytes;
}

std::string sha256(std::string_view data) {
    std::string digest(digestSize, '\0');
    unsigned int size = 0;
    if (EVP_Digest(data.data(), data.size(), reinterpret_cast<unsigned char *>(digest.data()), &size, EVP_sha256(),
                   nullptr) != 1)
        throw std::runtime_error("no digest");
    return digest;
}

std::string hmac(std::string_view key, std::string_view data) {
    std::string digest(digestSize, '\0');
    unsigned int size = 0;
    if (!HMAC(EVP_sha256(), key.data(), static_cast<int>(key.size()), bytesOf(data), data.size(),
              reinterpret_cast<unsigned char *>(digest.data()), &size))
        throw std::runtime_error("no signature");
    return digest;
}

std::string derived(std::string_view password, std::string_view salt, int rounds) {
    std::string key(digestSize, '\0');
    if (PKCS5_PBKDF2_HMAC(password.data(), static_cast<int>(password.size()), bytesOf(salt),
                          static_cast<int>(salt.size()), rounds, EVP_sha256(), static_cast<int>(key.size()),
                          reinterpret_cast<unsigned char *>(key.data())) != 1)
        throw std::runtime_error("no password hash");
    return toHex(key);
}

std::optional<std::string> fromBase64Url(std::string_view text) {
    std::string result;
    unsigned int bits = 0;
    int count = 0;
    for (const char c : text) {
        int value = -1;
        if (c >= 'A' && c <= 'Z')
            value = c - 'A';
        else if (c >= 'a' && c <= 'z')
            value = c - 'a' + 26;
        else if (c >= '0' && c <= '9')
            value = c - '0' + 52;
        else if (c == '-')
            value = 62;
        else if (c == '_')
            value = 63;
        if (value < 0)
            return std::nullopt;
        bits = ((bits << 6) | static_cast<unsigned int>(value)) & 0xFFFFU;
        count += 6;
        if (count >= 8) {
            count -= 8;
            result += static_cast<char>((bits >> count) & 0xFFU);
        }
    }
    return result;
}

} // namespace

std::string randomHex(std::size_t bytes) {
    return toHex(randomBytes(bytes));
}

std::string randomDigits() {
    std::string digits;
    // 250 is the last multiple of ten below 256: above it the digits would not be equally likely.
    while (digits.size() < 6)
        for (const unsigned char c : randomBytes(8))
            if (c < 250 && digits.size() < 6)
                digits += static_cast<char>('0' + c % 10);
    return digits;
}

std::string sha256Hex(std::string_view data) {
    return toHex(sha256(data));
}

std::string base64Url(std::string_view data) {
    static constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
    std::string result;
    unsigned int bits = 0;
    int count = 0;
    for (const unsigned char c : data) {
        bits = ((bits << 8) | c) & 0xFFFFU;
        count += 8;
        while (count >= 6) {
            count -= 6;
            result += alphabet[(bits >> count) & 63U];
        }
    }
    if (count > 0)
        result += alphabet[(bits << (6 - count)) & 63U];
    return result;
}

std::string base64(std::string_view data) {
    std::string text((data.size() + 2) / 3 * 4 + 1, '\0');
    const int length = EVP_EncodeBlock(reinterpret_cast<unsigned char *>(text.data()),
                                       reinterpret_cast<const unsigned char *>(data.data()), int(data.size()));
    text.resize(std::size_t(length));
    return text;
}

std::string pkceChallenge(std::string_view verifier) {
    return base64Url(sha256(verifier));
}

bool sameSecret(std::string_view a, std::string_view b) {
    return a.size() == b.size() && CRYPTO_memcmp(a.data(), b.data(), a.size()) == 0;
}

std::string hashPassword(std::string_view password) {
    const auto salt = randomHex(16);
    return "pbkdf2$" + std::to_string(passwordRounds) + "$" + salt + "$" + derived(password, salt, passwordRounds);
}

bool passwordMatches(std::string_view password, std::string_view hash) {
    std::vector<std::string_view> parts;
    for (auto rest = hash;;) {
        const auto end = rest.find('$');
        parts.push_back(rest.substr(0, end));
        if (end == std::string_view::npos)
            break;
        rest = rest.substr(end + 1);
    }
    int rounds = 0;
    if (parts.size() != 4 || parts[0] != "pbkdf2" ||
        std::from_chars(parts[1].data(), parts[1].data() + parts[1].size(), rounds).ec != std::errc() || rounds < 1)
        return false;
    return sameSecret(derived(password, parts[2], rounds), parts[3]);
}

std::string signToken(const boost::json::object &claims, std::string_view key) {
    const auto text = base64Url(R"({"alg":"HS256","typ":"JWT"})") + "." + base64Url(boost::json::serialize(claims));
    return text + "." + base64Url(hmac(key, text));
}

std::optional<boost::json::object> verifiedClaims(std::string_view token, std::string_view key) {
    const auto first = token.find('.');
    const auto second = token.find('.', first == std::string_view::npos ? first : first + 1);
    if (second == std::string_view::npos)
        return std::nullopt;
    // Only our own signature is ever accepted, whatever algorithm the header of a foreign token names.
    if (!sameSecret(base64Url(hmac(key, token.substr(0, second))), token.substr(second + 1)))
        return std::nullopt;
    const auto payload = fromBase64Url(token.substr(first + 1, second - first - 1));
    boost::json::error_code error;
    auto claims = payload ? boost::json::parse(*payload, error) : boost::json::value();
    if (error || !claims.is_object())
        return std::nullopt;
    return std::move(claims.as_object());
}

} // namespace lmp::sandbox
