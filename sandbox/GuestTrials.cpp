#include "GuestTrials.h"

#include "SandboxCrypto.h"
#include "SandboxDatabase.h"
#include "SandboxFailure.h"
#include "SandboxOptions.h"

namespace lmp::sandbox {

namespace {

int roundsOf(SQLite::Database &database, const std::string &digest) {
    SQLite::Statement select(database, "SELECT rounds_left FROM guests WHERE digest = ?");
    select.bind(1, digest);
    if (!select.executeStep())
        throw SandboxFailure(401, "guest_unknown", "这次试聊已失效，请重新开始。");
    const int rounds = select.getColumn(0).getInt();
    if (rounds <= 0)
        throw SandboxFailure(403, "guest_exhausted", "试聊的次数用完了，注册后可以接着聊。");
    return rounds;
}

} // namespace

GuestTrials::GuestTrials(SandboxDatabase &database, const SandboxOptions &options)
    : m_database(database)
    , m_options(options) {}

GuestTrials::Session GuestTrials::open() {
    const Session session{"guest_" + randomHex(16), m_options.guestRounds};
    m_database.write([&](SQLite::Database &database) {
        SQLite::Statement insert(database, "INSERT INTO guests VALUES(?, ?)");
        insert.bind(1, sha256Hex(session.token));
        insert.bind(2, session.roundsLeft);
        insert.exec();
    });
    return session;
}

void GuestTrials::requireRound(const std::string &token) {
    m_database.read([&](SQLite::Database &database) { return roundsOf(database, sha256Hex(token)); });
}

int GuestTrials::takeRound(const std::string &token) {
    const auto digest = sha256Hex(token);
    return m_database.write([&](SQLite::Database &database) {
        const int left = roundsOf(database, digest) - 1;
        SQLite::Statement update(database, "UPDATE guests SET rounds_left = ? WHERE digest = ?");
        update.bind(1, left);
        update.bind(2, digest);
        update.exec();
        return left;
    });
}

} // namespace lmp::sandbox
