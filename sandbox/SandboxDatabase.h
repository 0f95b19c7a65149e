// The sandbox's one SQLite file. All state of record is here and survives a restart; several sandboxes may share a
// file. One connection behind one mutex: every operation is short. Owned by SandboxServices; any thread. Failures are
// SQLite::Exception; the constructor also throws std::runtime_error when the file cannot be made private.
#pragma once
#include <SQLiteCpp/SQLiteCpp.h>
#include <filesystem>
#include <mutex>

namespace lmp::sandbox {

class SandboxDatabase {
public:
    /// Opens or creates `file` (0600, in a folder of 0700 when it has to be made) and brings its schema up to date.
    explicit SandboxDatabase(const std::filesystem::path &file);

    /// Runs `work(SQLite::Database &)` inside BEGIN IMMEDIATE: what it reads cannot change before what it writes is
    /// there. Rolled back when it throws.
    template <class Work>
    auto write(Work work) {
        const std::lock_guard lock(m_mutex);
        SQLite::Transaction transaction(m_database, SQLite::TransactionBehavior::IMMEDIATE);
        if constexpr (std::is_void_v<decltype(work(m_database))>) {
            work(m_database);
            transaction.commit();
        } else {
            auto result = work(m_database);
            transaction.commit();
            return result;
        }
    }

    /// Runs `work(SQLite::Database &)` for one consistent look; it must not write.
    template <class Work>
    auto read(Work work) {
        const std::lock_guard lock(m_mutex);
        return work(m_database);
    }

    /// A random secret that belongs to this file, made on first use.
    std::string secret(const std::string &name);

private:
    void prepare();

    std::mutex m_mutex;
    SQLite::Database m_database;
};

} // namespace lmp::sandbox
