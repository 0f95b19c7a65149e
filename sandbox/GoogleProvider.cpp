#include "GoogleProvider.h"

#include "SandboxCrypto.h"
#include "SandboxDatabase.h"
#include "SandboxFailure.h"
#include "SandboxOptions.h"

#include <algorithm>

namespace lmp::sandbox {

namespace {

constexpr std::int64_t codeLifetimeMs = 60'000;
constexpr std::int64_t tokenLifetimeSeconds = 600;
constexpr const char *issuer = "lumenpair-sandbox-google";

std::string field(const FormFields &fields, const std::string &name) {
    const auto found = fields.find(name);
    return found == fields.end() ? std::string() : found->second;
}

SandboxAnswer backTo(const FormFields &query, const std::string &name, const std::string &value) {
    auto uri = field(query, "redirect_uri");
    uri += uri.find('?') == std::string::npos ? '?' : '&';
    uri += name + "=" + percentEncoded(value);
    if (const auto state = field(query, "state"); !state.empty())
        uri += "&state=" + percentEncoded(state);
    return SandboxAnswer::redirect(uri);
}

SandboxAnswer page(const std::string &content, int status) {
    return SandboxAnswer::html("<!doctype html><html lang=\"zh-CN\"><meta charset=\"utf-8\"><title>沙盒登录</title>"
                               "<style>body{font:16px/1.7 sans-serif;max-width:26em;margin:4em auto;padding:0 1em}"
                               "input,button{font:inherit;padding:.3em .6em}</style>" +
                                   content + "</html>",
                               status);
}

SandboxAnswer tokenError(const std::string &code, const std::string &reason) {
    return SandboxAnswer::json({{"error", code}, {"error_description", reason}, {"reason", reason}}, 400);
}

} // namespace

GoogleProvider::GoogleProvider(SandboxDatabase &database, const SandboxOptions &options)
    : m_options(options)
    , m_key(database.secret("google")) {}

bool GoogleProvider::isLoopback(const std::string &redirectUri) {
    std::size_t at = 0;
    for (const std::string_view host : {"http://127.0.0.1:", "http://[::1]:"})
        if (redirectUri.starts_with(host))
            at = host.size();
    if (at == 0 || redirectUri.size() > 2000)
        return false;
    const auto start = at;
    int port = 0;
    while (at < redirectUri.size() && redirectUri[at] >= '0' && redirectUri[at] <= '9' && at - start < 5)
        port = port * 10 + (redirectUri[at++] - '0');
    const bool plain = std::all_of(redirectUri.begin(), redirectUri.end(),
                                   [](unsigned char c) { return c > ' ' && c < 127 && c != '#' && c != '\\'; });
    return plain && at > start && port > 0 && port < 65536 &&
           (at == redirectUri.size() || redirectUri[at] == '/' || redirectUri[at] == '?');
}

std::string GoogleProvider::objection(const FormFields &query) const {
    const auto &known = m_options.googleClientIds;
    if (!isLoopback(field(query, "redirect_uri")))
        return "redirect_uri 必须是本机回环地址（http://127.0.0.1:端口/…）。";
    if (std::find(known.begin(), known.end(), field(query, "client_id")) == known.end())
        return "不认识的 client_id。用 --google-client-id 可以让沙盒接受它。";
    if (field(query, "response_type") != "code")
        return "response_type 必须是 code。";
    if (field(query, "code_challenge_method") != "S256" || field(query, "code_challenge").size() != 43)
        return "需要 S256 的 code_challenge。";
    return {};
}

SandboxAnswer GoogleProvider::authorize(const FormFields &query) {
    if (const auto problem = objection(query); !problem.empty())
        return page("<h1>不能继续</h1><p>" + htmlEscaped(problem) + "</p>", 400);
    if (const auto email = field(query, "auto"); !email.empty())
        return grant(query, email);
    std::string hidden;
    for (const auto *name :
         {"client_id", "redirect_uri", "response_type", "state", "code_challenge", "code_challenge_method", "nonce"})
        hidden += std::string("<input type=\"hidden\" name=\"") + name + "\" value=\"" +
                  htmlEscaped(field(query, name)) + "\">";
    return page(
        "<h1>沙盒里的 Google 登录</h1><p>这不是真的 Google，只供试用。选一个邮箱，当作你的账号。</p>"
        "<form method=\"post\" action=\"/sandbox/google/authorize\">" +
            hidden +
            "<p><label>邮箱 <input type=\"email\" name=\"email\" value=\"xiaolin@example.com\" autofocus></label></p>"
            "<p><button name=\"decision\" value=\"allow\">允许登录</button> "
            "<button name=\"decision\" value=\"deny\" formnovalidate>不允许</button></p></form>",
        200);
}

SandboxAnswer GoogleProvider::decide(const FormFields &form) {
    if (const auto problem = objection(form); !problem.empty())
        return page("<h1>不能继续</h1><p>" + htmlEscaped(problem) + "</p>", 400);
    if (field(form, "decision") != "allow")
        return backTo(form, "error", "access_denied");
    return grant(form, field(form, "email"));
}

SandboxAnswer GoogleProvider::grant(const FormFields &query, const std::string &email) {
    Grant entry{field(query, "client_id"),
                field(query, "redirect_uri"),
                field(query, "code_challenge"),
                field(query, "nonce"),
                {},
                m_options.now() + codeLifetimeMs};
    try {
        entry.email = normalizedEmail(email);
    } catch (const SandboxFailure &failure) {
        return page("<h1>不能继续</h1><p>" + htmlEscaped(failure.reason) + "</p>", 400);
    }
    const auto code = randomHex(16);
    {
        const std::lock_guard lock(m_mutex);
        std::erase_if(m_grants, [now = m_options.now()](const auto &grant) { return grant.second.expiresAt <= now; });
        m_grants.emplace(code, std::move(entry));
    }
    return backTo(query, "code", code);
}

SandboxAnswer GoogleProvider::token(const FormFields &form) {
    if (field(form, "grant_type") != "authorization_code")
        return tokenError("unsupported_grant_type", "grant_type 必须是 authorization_code。");
    Grant entry;
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_grants.find(field(form, "code"));
        if (found == m_grants.end())
            return tokenError("invalid_grant", "授权码无效或已用过。");
        // Taken out whatever comes next: a code that met a wrong verifier is burnt.
        entry = std::move(found->second);
        m_grants.erase(found);
    }
    if (entry.expiresAt <= m_options.now())
        return tokenError("invalid_grant", "授权码已过期。");
    if (entry.clientId != field(form, "client_id") || entry.redirectUri != field(form, "redirect_uri"))
        return tokenError("invalid_grant", "client_id 或 redirect_uri 与授权时不一致。");
    if (!sameSecret(pkceChallenge(field(form, "code_verifier")), entry.challenge))
        return tokenError("invalid_grant", "code_verifier 不对。");
    const auto now = m_options.now() / 1000;
    boost::json::object claims{{"iss", issuer},
                               {"aud", entry.clientId},
                               {"sub", "g_" + sha256Hex("google|" + entry.email).substr(0, 20)},
                               {"email", entry.email},
                               {"email_verified", true},
                               {"iat", now},
                               {"exp", now + tokenLifetimeSeconds}};
    if (!entry.nonce.empty())
        claims["nonce"] = entry.nonce;
    return SandboxAnswer::json({{"id_token", signToken(claims, m_key)},
                                {"access_token", randomHex(16)},
                                {"token_type", "Bearer"},
                                {"expires_in", tokenLifetimeSeconds}});
}

ProviderIdentity GoogleProvider::identityOf(const std::string &idToken, const std::string &nonce) const {
    const SandboxFailure refusal(401, "google_token_invalid", "Google 登录没有通过核对，请再试一次。");
    const auto claims = verifiedClaims(idToken, m_key);
    if (!claims)
        throw refusal;
    // Our own signature vouches for the shape of the claims.
    const auto text = [&](const char *name) {
        const auto *value = claims->if_contains(name);
        return value && value->is_string() ? std::string(value->as_string()) : std::string();
    };
    const auto &known = m_options.googleClientIds;
    const auto *expires = claims->if_contains("exp");
    if (text("iss") != issuer || std::find(known.begin(), known.end(), text("aud")) == known.end() || !expires ||
        !expires->is_int64() || expires->as_int64() * 1000 <= m_options.now() ||
        (!nonce.empty() && nonce != text("nonce")))
        throw refusal;
    return {"google", text("sub"), text("email"), {}};
}

} // namespace lmp::sandbox
