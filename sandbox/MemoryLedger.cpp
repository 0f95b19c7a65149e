#include "MemoryLedger.h"

#include "ChineseText.h"
#include "JsonFields.h"
#include "SandboxAccount.h"
#include "SandboxCrypto.h"
#include "SandboxDatabase.h"
#include "SandboxFailure.h"
#include "SandboxOptions.h"

namespace lmp::sandbox {

namespace {

constexpr std::size_t longestContent = 2000;
/// So many memories make the first chapter.
constexpr int chapterSize = 5;

constexpr const char *itemColumns = "uid, content, kind, truth, source, confidence, scope, frozen, supersedes, "
                                    "created_at, touched_at, state";

SandboxFailure unknownMemory() {
    return SandboxFailure::notFound("没有找到这条记忆。");
}

std::string revisionText(std::int64_t revision) {
    return "r" + std::to_string(revision);
}

template <class... Values>
int run(SQLite::Database &database, const char *sql, const Values &...values) {
    SQLite::Statement statement(database, sql);
    int index = 0;
    (statement.bind(++index, values), ...);
    return statement.exec();
}

} // namespace

MemoryLedger::MemoryLedger(SandboxDatabase &database, const SandboxOptions &options)
    : m_database(database)
    , m_options(options) {}

boost::json::object MemoryLedger::item(const SQLite::Statement &row) {
    const auto column = [&](int index) {
        return row.getColumn(index);
    };
    boost::json::object item{{"id", column(0).getString()},
                             {"content", column(1).getString()},
                             {"kind", column(2).getString()},
                             {"truth", column(3).getString()},
                             {"source", column(4).getString()},
                             {"confidence", column(5).getString()},
                             {"scope", column(6).getString()},
                             {"frozen", column(7).getInt() != 0},
                             {"validFrom", isoTime(column(9).getInt64())}};
    if (!column(8).isNull())
        item["supersedes"] = column(8).getString();
    if (!column(10).isNull())
        item["touchedAt"] = isoTime(column(10).getInt64());
    return item;
}

boost::json::object MemoryLedger::bundle(const std::string &userId) {
    return m_database.write([&](SQLite::Database &database) {
        proposeChapter(database, userId);
        boost::json::array items, candidates, chapters;
        SQLite::Statement select(database, std::string("SELECT ") + itemColumns +
                                               " FROM memories WHERE user_id = ? AND state <> 'forgotten' "
                                               "ORDER BY id DESC");
        select.bind(1, userId);
        while (select.executeStep())
            items.push_back(item(select));
        SQLite::Statement waiting(
            database, "SELECT uid, content, why, scope FROM memory_candidates WHERE user_id = ? ORDER BY id");
        waiting.bind(1, userId);
        while (waiting.executeStep())
            candidates.push_back(boost::json::object{{"id", waiting.getColumn(0).getString()},
                                                     {"content", waiting.getColumn(1).getString()},
                                                     {"why", waiting.getColumn(2).getString()},
                                                     {"scope", waiting.getColumn(3).getString()}});
        SQLite::Statement story(database, "SELECT body FROM chapters WHERE user_id = ? ORDER BY id");
        story.bind(1, userId);
        while (story.executeStep())
            chapters.push_back(parseJsonObject(story.getColumn(0).getString()));
        return boost::json::object{
            {"items", std::move(items)}, {"candidates", std::move(candidates)}, {"chapters", std::move(chapters)}};
    });
}

void MemoryLedger::proposeChapter(SQLite::Database &database, const std::string &userId) {
    SQLite::Statement known(database, "SELECT (SELECT count(*) FROM chapters WHERE user_id = ?1), content, created_at "
                                      "FROM memories WHERE user_id = ?1 AND state = 'active' ORDER BY id LIMIT ?2");
    known.bind(1, userId);
    known.bind(2, chapterSize);
    boost::json::array evidence;
    std::int64_t begun = 0;
    while (known.executeStep()) {
        if (known.getColumn(0).getInt() > 0)
            return;
        if (evidence.empty())
            begun = known.getColumn(2).getInt64();
        evidence.push_back(boost::json::string(known.getColumn(1).getString()));
    }
    if (evidence.size() < chapterSize)
        return;
    const auto uid = "ch_" + randomHex(6);
    const boost::json::object chapter{{"id", uid},
                                      {"n", 1},
                                      {"title", "认识你的开始"},
                                      {"date", isoTime(begun).substr(0, 10)},
                                      {"real", "你陆续说了几件关于自己的事。"},
                                      {"story", "故事从几句闲谈开始，慢慢有了你的样子。"},
                                      {"evidence", std::move(evidence)},
                                      {"pending", true}};
    run(database, "INSERT INTO chapters(user_id, uid, body) VALUES(?, ?, ?)", userId, uid,
        boost::json::serialize(chapter));
}

boost::json::array MemoryLedger::propose(const std::string &userId, const std::vector<TwinMemory> &found,
                                         const std::string &why) {
    return m_database.write([&](SQLite::Database &database) {
        boost::json::array candidates;
        for (const auto &memory : found) {
            SQLite::Statement known(database, "SELECT 1 FROM memories WHERE user_id = ? AND content = ? AND "
                                              "state = 'active' UNION ALL SELECT 1 FROM memory_candidates "
                                              "WHERE user_id = ? AND content = ?");
            known.bind(1, userId);
            known.bind(2, memory.content);
            known.bind(3, userId);
            known.bind(4, memory.content);
            if (known.executeStep())
                continue;
            const auto uid = "cand_" + randomHex(6);
            const std::string scope = memory.truth == "pref" ? "聊天与建议" : "全部";
            run(database,
                "INSERT INTO memory_candidates(user_id, uid, slot, content, truth, why, scope) "
                "VALUES(?, ?, ?, ?, ?, ?, ?)",
                userId, uid, memory.slot, memory.content, memory.truth, why, scope);
            candidates.push_back(
                boost::json::object{{"id", uid}, {"content", memory.content}, {"why", why}, {"scope", scope}});
        }
        return candidates;
    });
}

boost::json::object MemoryLedger::confirm(const std::string &userId, const std::string &candidateId) {
    return m_database.write([&](SQLite::Database &database) {
        SQLite::Statement candidate(database, "SELECT slot, content, truth, scope FROM memory_candidates "
                                              "WHERE user_id = ? AND uid = ?");
        candidate.bind(1, userId);
        candidate.bind(2, candidateId);
        if (!candidate.executeStep())
            throw SandboxFailure::notFound("这条候选已经处理过了。");
        const std::string slot = candidate.getColumn(0), content = candidate.getColumn(1),
                          truth = candidate.getColumn(2), scope = candidate.getColumn(3);
        boost::json::object answer;
        std::optional<std::string> older;
        SQLite::Statement replaced(database, "SELECT uid, content FROM memories WHERE user_id = ? AND slot = ? AND "
                                             "slot <> '' AND state = 'active' AND content <> ?");
        replaced.bind(1, userId);
        replaced.bind(2, slot);
        replaced.bind(3, content);
        if (replaced.executeStep()) {
            older = replaced.getColumn(0).getString();
            answer["supersededContent"] = replaced.getColumn(1).getString();
            run(database, "UPDATE memories SET state = 'superseded' WHERE user_id = ? AND uid = ?", userId, *older);
        }
        // A wording that was forgotten or replaced before may come back.
        run(database, "DELETE FROM memories WHERE user_id = ? AND content = ? AND state <> 'active'", userId, content);
        run(database,
            "INSERT OR IGNORE INTO memories(user_id, uid, slot, content, truth, scope, source, confidence, created_at) "
            "VALUES(?, ?, ?, ?, ?, ?, '你确认的候选', '高', ?)",
            userId, "mem_" + randomHex(6), slot, content, truth, scope, m_options.now());
        if (older)
            run(database, "UPDATE memories SET supersedes = ? WHERE user_id = ? AND content = ?", *older, userId,
                content);
        run(database, "DELETE FROM memory_candidates WHERE user_id = ? AND uid = ?", userId, candidateId);
        SQLite::Statement made(database, std::string("SELECT ") + itemColumns +
                                             " FROM memories WHERE user_id = ? AND content = ?");
        made.bind(1, userId);
        made.bind(2, content);
        if (made.executeStep())
            answer["item"] = item(made);
        return answer;
    });
}

void MemoryLedger::dismiss(const std::string &userId, const std::string &candidateId) {
    m_database.write([&](SQLite::Database &database) {
        if (run(database, "DELETE FROM memory_candidates WHERE user_id = ? AND uid = ?", userId, candidateId) == 0)
            throw SandboxFailure::notFound("这条候选已经处理过了。");
    });
}

MemoryLedger::Row MemoryLedger::row(SQLite::Database &database, const std::string &userId,
                                    const std::string &memoryId) {
    SQLite::Statement select(database, "SELECT content, truth, state, revision FROM memories "
                                       "WHERE user_id = ? AND uid = ? AND state <> 'forgotten'");
    select.bind(1, userId);
    select.bind(2, memoryId);
    if (!select.executeStep())
        throw unknownMemory();
    return {select.getColumn(0).getString(), select.getColumn(1).getString(), select.getColumn(2).getString(),
            select.getColumn(3).getInt64()};
}

void MemoryLedger::change(SQLite::Database &database, const std::string &userId, const std::string &memoryId,
                          const Row &before, const std::string &content, const std::string &source) {
    SQLite::Statement taken(database, "SELECT 1 FROM memories WHERE user_id = ? AND content = ? AND uid <> ?");
    taken.bind(1, userId);
    taken.bind(2, content);
    taken.bind(3, memoryId);
    if (taken.executeStep())
        throw SandboxFailure(422, "duplicate", "已有一条同样说法的记忆。");
    run(database,
        "UPDATE memories SET content = ?, truth = 'fact', confidence = '高', source = ?, revision = revision + 1 "
        "WHERE user_id = ? AND uid = ?",
        content, source, userId, memoryId);
    run(database,
        "INSERT INTO memory_history(user_id, memory_id, uid, previous, next, source, at) VALUES(?, ?, ?, ?, ?, ?, ?)",
        userId, memoryId, "h_" + randomHex(6), before.content, content, source, m_options.now());
}

boost::json::object MemoryLedger::correct(const std::string &userId, const std::string &memoryId,
                                          const std::string &content, const std::string &expectedRevision) {
    if (trimmed(content).empty() || content.size() > longestContent)
        throw SandboxFailure::badField("content", "1 到 2000 字节的文字");
    return m_database.write([&](SQLite::Database &database) {
        const auto before = row(database, userId, memoryId);
        if (revisionText(before.revision) != expectedRevision)
            throw SandboxFailure(409, "conflict", "这条记忆已在别处更新。");
        change(database, userId, memoryId, before, content, "你的纠正");
        return boost::json::object{{"previous", before.content}, {"revision", revisionText(before.revision + 1)}};
    });
}

boost::json::object MemoryLedger::revert(const std::string &userId, const std::string &memoryId,
                                         const std::string &expectedRevision) {
    return m_database.write([&](SQLite::Database &database) {
        const auto before = row(database, userId, memoryId);
        if (revisionText(before.revision) != expectedRevision)
            throw SandboxFailure(409, "conflict", "这条记忆已在别处更新。");
        SQLite::Statement last(database, "SELECT previous FROM memory_history WHERE user_id = ? AND memory_id = ? "
                                         "ORDER BY id DESC LIMIT 1");
        last.bind(1, userId);
        last.bind(2, memoryId);
        const bool changed = last.executeStep() && last.getColumn(0).getString() != before.content;
        const auto content = changed ? last.getColumn(0).getString() : before.content;
        if (changed)
            change(database, userId, memoryId, before, content, "改回上一版");
        return boost::json::object{{"content", content},
                                   {"changed", changed},
                                   {"revision", revisionText(before.revision + (changed ? 1 : 0))}};
    });
}

void MemoryLedger::freeze(const std::string &userId, const std::string &memoryId, bool frozen) {
    m_database.write([&](SQLite::Database &database) {
        row(database, userId, memoryId);
        run(database, "UPDATE memories SET frozen = ? WHERE user_id = ? AND uid = ?", int(frozen), userId, memoryId);
    });
}

boost::json::object MemoryLedger::forget(const std::string &userId, const std::string &memoryId) {
    return m_database.write([&](SQLite::Database &database) {
        row(database, userId, memoryId);
        SQLite::Statement select(database,
                                 std::string("SELECT ") + itemColumns + " FROM memories WHERE user_id = ? AND uid = ?");
        select.bind(1, userId);
        select.bind(2, memoryId);
        select.executeStep();
        auto forgotten = item(select);
        // What is to be undone comes back as it was, replaced ones included.
        forgotten["sandboxState"] = select.getColumn(11).getString();
        run(database, "UPDATE memories SET state = 'forgotten' WHERE user_id = ? AND uid = ?", userId, memoryId);
        return boost::json::object{{"item", std::move(forgotten)}};
    });
}

void MemoryLedger::restore(const std::string &userId, const boost::json::object &item) {
    const JsonFields fields(item, "item.");
    const auto id = fields.text("id");
    const bool superseded = fields.optionalText("sandboxState").value_or("active") == "superseded";
    m_database.write([&](SQLite::Database &database) {
        const int changed =
            run(database, "UPDATE memories SET state = ? WHERE user_id = ? AND uid = ? AND state = 'forgotten'",
                std::string(superseded ? "superseded" : "active"), userId, id);
        if (changed == 0)
            throw SandboxFailure::notFound("没有找到刚忘记的这条记忆。");
    });
}

boost::json::object MemoryLedger::history(const std::string &userId, const std::string &memoryId) {
    return m_database.read([&](SQLite::Database &database) {
        const auto now = row(database, userId, memoryId);
        boost::json::array entries;
        SQLite::Statement select(database, "SELECT uid, previous, next, source, at FROM memory_history "
                                           "WHERE user_id = ? AND memory_id = ? ORDER BY id");
        select.bind(1, userId);
        select.bind(2, memoryId);
        while (select.executeStep())
            entries.push_back(boost::json::object{{"id", select.getColumn(0).getString()},
                                                  {"memoryId", memoryId},
                                                  {"previous", select.getColumn(1).getString()},
                                                  {"next", select.getColumn(2).getString()},
                                                  {"source", select.getColumn(3).getString()},
                                                  {"at", isoTime(select.getColumn(4).getInt64())}});
        const bool canRevert = !entries.empty();
        return boost::json::object{{"revision", revisionText(now.revision)},
                                   {"memoryId", memoryId},
                                   {"current", now.content},
                                   {"entries", std::move(entries)},
                                   {"canRevert", canRevert}};
    });
}

void MemoryLedger::resolveChapter(const std::string &userId, const std::string &chapterId,
                                  const std::string &decision) {
    if (decision != "accept" && decision != "reject")
        throw SandboxFailure::badField("decision", "accept 或 reject");
    m_database.write([&](SQLite::Database &database) {
        SQLite::Statement select(database, "SELECT body FROM chapters WHERE user_id = ? AND uid = ?");
        select.bind(1, userId);
        select.bind(2, chapterId);
        if (!select.executeStep())
            throw SandboxFailure::notFound("没有找到这一章。");
        auto chapter = parseJsonObject(select.getColumn(0).getString());
        if (decision == "reject") {
            run(database, "DELETE FROM chapters WHERE user_id = ? AND uid = ?", userId, chapterId);
            return;
        }
        chapter["pending"] = false;
        run(database, "UPDATE chapters SET body = ? WHERE user_id = ? AND uid = ?", boost::json::serialize(chapter),
            userId, chapterId);
    });
}

} // namespace lmp::sandbox
