// The ledger of what the twin remembers of each user: items with their history, candidates that wait for the user's
// word, and chapters. Owned by SandboxServices; any thread. Failures are SandboxFailure: 404 for what is not the
// user's, 409 "conflict" for an edit of another revision than the stored one.
#pragma once
#include "TwinMemory.h"
#include <SQLiteCpp/SQLiteCpp.h>
#include <boost/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace lmp::sandbox {

class SandboxDatabase;
struct SandboxOptions;

class MemoryLedger {
public:
    MemoryLedger(SandboxDatabase &database, const SandboxOptions &options);

    /// {"items", "candidates", "chapters"}, newest item first.
    boost::json::object bundle(const std::string &userId);
    /// Proposes what is not known yet; {id, content, why, scope} each.
    boost::json::array propose(const std::string &userId, const std::vector<TwinMemory> &found, const std::string &why);
    /// {"item", "supersededContent"?}; the candidate is gone afterwards.
    boost::json::object confirm(const std::string &userId, const std::string &candidateId);
    void dismiss(const std::string &userId, const std::string &candidateId);
    /// {"previous", "revision"}
    boost::json::object correct(const std::string &userId, const std::string &memoryId, const std::string &content,
                                const std::string &expectedRevision);
    /// {"content", "changed", "revision", "note"?}
    boost::json::object revert(const std::string &userId, const std::string &memoryId,
                               const std::string &expectedRevision);
    void freeze(const std::string &userId, const std::string &memoryId, bool frozen);
    /// The forgotten item, for an undo.
    boost::json::object forget(const std::string &userId, const std::string &memoryId);
    void restore(const std::string &userId, const boost::json::object &item);
    boost::json::object history(const std::string &userId, const std::string &memoryId);
    void resolveChapter(const std::string &userId, const std::string &chapterId, const std::string &decision);

private:
    struct Row {
        std::string content;
        std::string truth;
        std::string state;
        std::int64_t revision = 0;
    };

    static Row row(SQLite::Database &database, const std::string &userId, const std::string &memoryId);
    void change(SQLite::Database &database, const std::string &userId, const std::string &memoryId, const Row &before,
                const std::string &content, const std::string &source);
    static boost::json::object item(const SQLite::Statement &row);
    void proposeChapter(SQLite::Database &database, const std::string &userId);

    SandboxDatabase &m_database;
    const SandboxOptions &m_options;
};

} // namespace lmp::sandbox
