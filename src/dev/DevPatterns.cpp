#include "dev/DevPatterns.h"

#include <re2/re2.h>

#include <array>
#include <memory>
#include <vector>

namespace lmp {

namespace {

constexpr const char *sensitivePattern =
    R"re((^|/|\s)(\.env(\.[A-Za-z0-9_-]+)?|\.ssh|id_(rsa|ed25519|ecdsa)|\.aws|\.gnupg|\.netrc|\.npmrc|\.pypirc|\.docker/config\.json|\.kube/config|.*\.pem|.*\.p12|.*\.keystore|\.claude/\.?credentials.*|\.codex/auth\.json|/etc/(passwd|shadow|sudoers)|Keychains?)(\s|/|$))re";

constexpr std::array riskyPatterns = {
    R"re(\bgit\s+(push|merge|rebase|reset\s+--hard|checkout\s+--\s*\.|clean|stash|branch\s+-D|tag\s+-d|remote\s+(add|set-url|remove))\b)re",
    R"re(\bgit\s+add\s+(-A|--all|\.)(\s|$))re",
    R"re(\b(npm|pnpm|yarn)\s+publish\b)re",
    R"re(\b(gh)\s+(pr\s+(merge|create)|release|repo\s+delete)\b)re",
    R"re(\brm\s+(-[a-zA-Z]*r[a-zA-Z]*f|-[a-zA-Z]*f[a-zA-Z]*r)\b)re",
    R"re(\b(deploy|deploy-prod|kubectl|terraform|aws|gcloud|az)\b)re",
    R"re(\b(curl|wget)\b.*\s(-X\s*(POST|PUT|DELETE)|--data|-d\s))re",
    R"re(\b(scp|rsync|ssh)\b)re",
    R"re((^|\s)(chmod|chown)\s+-R\b)re",
};

/// Bytes instead of characters: the expressions name ASCII alone, and no text is then too broken to be looked at.
RE2::Options options() {
    RE2::Options options(RE2::Latin1);
    options.set_log_errors(false);
    options.set_never_capture(true);
    return options;
}

using Patterns = std::vector<std::unique_ptr<RE2>>;

template <class Texts>
Patterns compiled(const Texts &texts) {
    Patterns patterns;
    for (const char *text : texts) {
        auto pattern = std::make_unique<RE2>(text, options());
        if (pattern->ok())
            patterns.push_back(std::move(pattern));
    }
    return patterns;
}

bool anyHits(const Patterns &patterns, std::string_view text) {
    const re2::StringPiece piece(text.data(), text.size());
    for (const auto &pattern : patterns) {
        if (pattern->Match(piece, 0, piece.size(), RE2::UNANCHORED, nullptr, 0))
            return true;
    }
    return false;
}

} // namespace

bool DevPatterns::isSensitive(std::string_view text) {
    static const Patterns patterns = compiled(std::array{sensitivePattern});
    return anyHits(patterns, text);
}

bool DevPatterns::isRisky(std::string_view text) {
    static const Patterns patterns = compiled(riskyPatterns);
    return anyHits(patterns, text);
}

} // namespace lmp
