#include "TwinMemories.h"

#include "SandboxDatabase.h"
#include "SandboxOptions.h"

namespace lmp::sandbox {

TwinMemories::TwinMemories(SandboxDatabase &database, const SandboxOptions &options)
    : m_database(database)
    , m_options(options) {}

std::vector<TwinMemory> TwinMemories::of(const std::string &userId) {
    return m_database.read([&](SQLite::Database &database) {
        std::vector<TwinMemory> memories;
        SQLite::Statement select(database, "SELECT slot, content, truth FROM memories WHERE user_id = ? ORDER BY id");
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
            SQLite::Statement clear(
                database, "DELETE FROM memories WHERE user_id = ? AND slot = ? AND slot <> '' AND content <> ?");
            clear.bind(1, userId);
            clear.bind(2, memory.slot);
            clear.bind(3, memory.content);
            clear.exec();
            SQLite::Statement insert(database, "INSERT OR IGNORE INTO memories(user_id, slot, content, truth, "
                                               "created_at) VALUES(?, ?, ?, ?, ?)");
            insert.bind(1, userId);
            insert.bind(2, memory.slot);
            insert.bind(3, memory.content);
            insert.bind(4, memory.truth);
            insert.bind(5, m_options.now());
            insert.exec();
        }
    });
}

} // namespace lmp::sandbox
