#include "TwinMemories.h"

#include "SandboxCrypto.h"
#include "SandboxDatabase.h"
#include "SandboxOptions.h"

namespace lmp::sandbox {

namespace {

void setState(SQLite::Database &database, const std::string &userId, const std::string &uid, const std::string &state) {
    SQLite::Statement update(database, "UPDATE memories SET state = ? WHERE user_id = ? AND uid = ?");
    update.bind(1, state);
    update.bind(2, userId);
    update.bind(3, uid);
    update.exec();
}

} // namespace

TwinMemories::TwinMemories(SandboxDatabase &database, const SandboxOptions &options)
    : m_database(database)
    , m_options(options) {}

std::vector<TwinMemory> TwinMemories::of(const std::string &userId) {
    return m_database.read([&](SQLite::Database &database) {
        std::vector<TwinMemory> memories;
        SQLite::Statement select(database, "SELECT slot, content, truth FROM memories WHERE user_id = ? AND "
                                           "state = 'active' AND frozen = 0 ORDER BY id");
        select.bind(1, userId);
        while (select.executeStep())
            memories.push_back(
                {select.getColumn(0).getString(), select.getColumn(1).getString(), select.getColumn(2).getString()});
        return memories;
    });
}

void TwinMemories::remember(const std::string &userId, const std::vector<TwinMemory> &memories) {
    if (memories.empty())
        return;
    m_database.write([&](SQLite::Database &database) {
        for (const auto &memory : memories) {
            SQLite::Statement older(database, "SELECT uid FROM memories WHERE user_id = ? AND slot = ? AND slot <> '' "
                                              "AND content <> ? AND state = 'active'");
            older.bind(1, userId);
            older.bind(2, memory.slot);
            older.bind(3, memory.content);
            const bool replaces = older.executeStep();
            SQLite::Statement insert(database, "INSERT OR IGNORE INTO memories(user_id, slot, content, truth, "
                                               "created_at, uid, supersedes) VALUES(?, ?, ?, ?, ?, ?, ?)");
            insert.bind(1, userId);
            insert.bind(2, memory.slot);
            insert.bind(3, memory.content);
            insert.bind(4, memory.truth);
            insert.bind(5, m_options.now());
            insert.bind(6, "mem_" + randomHex(6));
            if (replaces)
                insert.bind(7, older.getColumn(0).getString());
            insert.exec();
            if (replaces)
                setState(database, userId, older.getColumn(0).getString(), "superseded");
            // What was said before may become true again.
            SQLite::Statement again(database, "UPDATE memories SET state = 'active' WHERE user_id = ? AND content = ? "
                                              "AND state = 'superseded'");
            again.bind(1, userId);
            again.bind(2, memory.content);
            again.exec();
        }
    });
}

} // namespace lmp::sandbox
