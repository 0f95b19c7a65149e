#include "SandboxConversations.h"

#include "JsonFields.h"
#include "SandboxDatabase.h"
#include "SandboxFailure.h"

namespace lmp::sandbox {

namespace {

void requireMessages(const boost::json::array &messages) {
    std::size_t index = 0;
    for (const auto &message : messages) {
        const auto where = "conversation.messages[" + std::to_string(index++) + "]";
        if (!message.is_object())
            throw SandboxFailure::badField(where, "对象");
        const JsonFields fields(message.as_object(), where + ".");
        fields.text("id");
        fields.text("text", JsonFields::anyLength);
        const auto role = fields.text("role");
        if (role != "user" && role != "twin")
            throw SandboxFailure::badField(where + ".role", "user 或 twin");
    }
}

std::optional<std::int64_t> storedRevision(SQLite::Database &database, const std::string &userId,
                                           const std::string &id) {
    SQLite::Statement select(database, "SELECT revision FROM conversations WHERE user_id = ? AND id = ?");
    select.bind(1, userId);
    select.bind(2, id);
    if (!select.executeStep())
        return std::nullopt;
    return select.getColumn(0).getInt64();
}

} // namespace

SandboxConversations::SandboxConversations(SandboxDatabase &database)
    : m_database(database) {}

boost::json::array SandboxConversations::list(const std::string &userId) {
    return m_database.read([&](SQLite::Database &database) {
        boost::json::array summaries;
        SQLite::Statement select(database,
                                 "SELECT id, title, mode FROM conversations WHERE user_id = ? ORDER BY activity DESC");
        select.bind(1, userId);
        while (select.executeStep()) {
            boost::json::object summary{{"id", select.getColumn(0).getString()},
                                        {"title", select.getColumn(1).getString()}};
            if (!select.getColumn(2).isNull())
                summary["mode"] = select.getColumn(2).getString();
            summaries.push_back(std::move(summary));
        }
        return summaries;
    });
}

boost::json::object SandboxConversations::load(const std::string &userId, const std::string &id) {
    const auto body = m_database.read([&](SQLite::Database &database) {
        SQLite::Statement select(database, "SELECT body FROM conversations WHERE user_id = ? AND id = ?");
        select.bind(1, userId);
        select.bind(2, id);
        if (!select.executeStep())
            throw SandboxFailure::notFound("没有找到这段对话。");
        return select.getColumn(0).getString();
    });
    return parseJsonObject(body);
}

std::int64_t SandboxConversations::save(const std::string &userId, const boost::json::object &conversation) {
    const JsonFields fields(conversation, "conversation.");
    const auto id = fields.text("id", 200);
    const auto title = fields.text("title");
    const auto mode = fields.optionalText("mode");
    const auto known = fields.optionalInteger("revision").value_or(0);
    if (id.empty())
        throw SandboxFailure::badField("conversation.id", "非空字符串");
    requireMessages(fields.list("messages"));

    return m_database.write([&](SQLite::Database &database) {
        const auto stored = storedRevision(database, userId, id);
        if (known != stored.value_or(0))
            throw SandboxFailure(409, "conflict", "这段对话在别处有更新的版本。");
        const std::int64_t revision = known + 1;
        // Everything else stays as it came, known to us or not.
        auto body = conversation;
        body["revision"] = revision;
        SQLite::Statement insert(database, "INSERT OR REPLACE INTO conversations VALUES(?, ?, ?, ?, ?, ?, "
                                           "(SELECT coalesce(max(activity), 0) + 1 FROM conversations))");
        insert.bind(1, userId);
        insert.bind(2, id);
        insert.bind(3, revision);
        insert.bind(4, title);
        if (mode)
            insert.bind(5, *mode);
        insert.bind(6, boost::json::serialize(body));
        insert.exec();
        return revision;
    });
}

} // namespace lmp::sandbox
