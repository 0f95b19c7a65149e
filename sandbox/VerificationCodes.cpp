#include "VerificationCodes.h"

#include "SandboxCrypto.h"
#include "SandboxDatabase.h"
#include "SandboxFailure.h"
#include "SandboxOptions.h"

namespace lmp::sandbox {

namespace {

constexpr std::int64_t lifetimeMs = 300'000;
constexpr int mostAttempts = 5;

enum class Outcome { accepted, wrong, expired, exhausted };

void discard(SQLite::Database &database, const std::string &purpose, const std::string &target) {
    SQLite::Statement remove(database, "DELETE FROM codes WHERE purpose = ? AND target = ?");
    remove.bind(1, purpose);
    remove.bind(2, target);
    remove.exec();
}

} // namespace

VerificationCodes::VerificationCodes(SandboxDatabase &database, const SandboxOptions &options)
    : m_database(database)
    , m_options(options) {}

std::string VerificationCodes::issue(const std::string &purpose, const std::string &target) {
    const auto code = randomDigits();
    m_database.write([&](SQLite::Database &database) {
        SQLite::Statement insert(database, "INSERT OR REPLACE INTO codes VALUES(?, ?, ?, ?, 0)");
        insert.bind(1, purpose);
        insert.bind(2, target);
        insert.bind(3, sha256Hex(code));
        insert.bind(4, m_options.now() + lifetimeMs);
        insert.exec();
    });
    return code;
}

void VerificationCodes::redeem(const std::string &purpose, const std::string &target, const std::string &code) {
    // The count of wrong tries has to be committed although the request fails, hence no exception inside.
    const auto outcome = m_database.write([&](SQLite::Database &database) {
        SQLite::Statement select(database,
                                 "SELECT digest, expires_at, attempts FROM codes WHERE purpose = ? AND target = ?");
        select.bind(1, purpose);
        select.bind(2, target);
        if (!select.executeStep())
            return Outcome::wrong;
        if (select.getColumn(2).getInt() >= mostAttempts)
            return Outcome::exhausted;
        if (select.getColumn(1).getInt64() <= m_options.now()) {
            select.reset();
            discard(database, purpose, target);
            return Outcome::expired;
        }
        if (sameSecret(select.getColumn(0).getString(), sha256Hex(code))) {
            select.reset();
            discard(database, purpose, target);
            return Outcome::accepted;
        }
        SQLite::Statement count(database, "UPDATE codes SET attempts = attempts + 1 WHERE purpose = ? AND target = ?");
        count.bind(1, purpose);
        count.bind(2, target);
        count.exec();
        return Outcome::wrong;
    });
    switch (outcome) {
    case Outcome::accepted:
        return;
    case Outcome::wrong:
        throw SandboxFailure(400, "code_invalid", "验证码不对，请核对后再试。");
    case Outcome::expired:
        throw SandboxFailure(400, "code_expired", "验证码已过期，请重新获取。");
    case Outcome::exhausted:
        throw SandboxFailure(429, "too_many_attempts", "验证码错得太多次，请重新获取。");
    }
}

} // namespace lmp::sandbox
