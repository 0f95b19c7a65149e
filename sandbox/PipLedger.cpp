#include "PipLedger.h"

#include "SandboxAccount.h"
#include "SandboxDatabase.h"
#include "SandboxFailure.h"
#include "SandboxOptions.h"

#include <algorithm>

namespace lmp::sandbox {

namespace {

std::int64_t storedBalance(SQLite::Database &database, const std::string &userId) {
    SQLite::Statement select(database, "SELECT balance FROM users WHERE id = ?");
    select.bind(1, userId);
    if (!select.executeStep())
        throw SandboxFailure::unauthorized();
    return select.getColumn(0).getInt64();
}

} // namespace

PipLedger::PipLedger(SandboxDatabase &database, const SandboxOptions &options)
    : m_database(database)
    , m_options(options) {}

std::int64_t PipLedger::balanceOf(const std::string &userId) {
    return m_database.read([&](SQLite::Database &database) { return storedBalance(database, userId); });
}

void PipLedger::requireFunds(const std::string &userId, std::int64_t cost) {
    const auto balance = balanceOf(userId);
    if (balance < cost)
        throw SandboxFailure::insufficientPip(cost, balance);
}

PipLedger::Receipt PipLedger::charge(const std::string &userId, const std::string &requestId, std::int64_t cost) {
    return m_database.write([&](SQLite::Database &database) -> Receipt {
        SQLite::Statement earlier(database, "SELECT amount, balance FROM charges WHERE request_id = ?");
        earlier.bind(1, requestId);
        if (earlier.executeStep())
            return {earlier.getColumn(0).getInt64(), earlier.getColumn(1).getInt64()};
        const auto before = storedBalance(database, userId);
        const Receipt receipt{std::min(cost, before), before - std::min(cost, before)};
        SQLite::Statement update(database, "UPDATE users SET balance = ? WHERE id = ?");
        update.bind(1, receipt.balance);
        update.bind(2, userId);
        update.exec();
        SQLite::Statement insert(database, "INSERT INTO charges VALUES(?, ?, ?, ?, ?)");
        insert.bind(1, requestId);
        insert.bind(2, userId);
        insert.bind(3, receipt.charged);
        insert.bind(4, receipt.balance);
        insert.bind(5, m_options.now());
        insert.exec();
        return receipt;
    });
}

boost::json::object PipLedger::statement(const std::string &userId) {
    return m_database.read([&](SQLite::Database &database) {
        boost::json::array charges;
        SQLite::Statement select(database, "SELECT request_id, amount, balance, charged_at FROM charges "
                                           "WHERE user_id = ? ORDER BY charged_at, rowid");
        select.bind(1, userId);
        while (select.executeStep())
            charges.push_back(boost::json::object{{"requestId", select.getColumn(0).getString()},
                                                  {"amount", select.getColumn(1).getInt64()},
                                                  {"balance", select.getColumn(2).getInt64()},
                                                  {"chargedAt", isoTime(select.getColumn(3).getInt64())}});
        return boost::json::object{{"balance", storedBalance(database, userId)}, {"charges", std::move(charges)}};
    });
}

} // namespace lmp::sandbox
