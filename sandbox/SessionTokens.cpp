#include "SessionTokens.h"

#include "SandboxCrypto.h"
#include "SandboxDatabase.h"
#include "SandboxFailure.h"
#include "SandboxOptions.h"
#include "SandboxRequest.h"

namespace lmp::sandbox {

SessionTokens::SessionTokens(SandboxDatabase &database, const SandboxOptions &options)
    : m_database(database)
    , m_options(options) {}

std::string SessionTokens::issue(const std::string &userId) {
    auto token = "sbx_" + randomHex(24);
    m_database.write([&](SQLite::Database &database) {
        SQLite::Statement insert(database, "INSERT INTO tokens VALUES(?, ?, ?)");
        insert.bind(1, sha256Hex(token));
        insert.bind(2, userId);
        insert.bind(3, m_options.now());
        insert.exec();
    });
    return token;
}

std::string SessionTokens::userOf(const SandboxRequest &request) {
    if (request.token.empty())
        throw SandboxFailure::unauthorized();
    return m_database.read([&](SQLite::Database &database) {
        SQLite::Statement select(database, "SELECT user_id FROM tokens WHERE digest = ?");
        select.bind(1, sha256Hex(request.token));
        if (!select.executeStep())
            throw SandboxFailure::unauthorized();
        return select.getColumn(0).getString();
    });
}

} // namespace lmp::sandbox
