#include "UsageWatch.h"

#include "SandboxDatabase.h"
#include "SandboxOptions.h"

#include <algorithm>

namespace lmp::sandbox {

namespace {

constexpr std::int64_t minuteMs = 60'000;
constexpr std::int64_t pauseMs = 10 * minuteMs;

} // namespace

UsageWatch::UsageWatch(SandboxDatabase &database, const SandboxOptions &options)
    : m_database(database)
    , m_options(options) {}

std::optional<boost::json::object> UsageWatch::noteTurn(const std::string &userId) {
    const auto now = m_options.now();
    const auto threshold = m_options.continuousMinutes * minuteMs;
    return m_database.write([&](SQLite::Database &database) -> std::optional<boost::json::object> {
        std::int64_t started = now;
        std::int64_t reminded = 0;
        SQLite::Statement select(database, "SELECT started_at, last_at, reminded_at FROM usage WHERE user_id = ?");
        select.bind(1, userId);
        if (select.executeStep() && now - select.getColumn(1).getInt64() < pauseMs) {
            started = select.getColumn(0).getInt64();
            reminded = select.getColumn(2).getInt64();
        }
        select.reset();
        const bool due =
            now - started >= threshold && (reminded == 0 || now - reminded >= std::min(threshold, 15 * minuteMs));
        SQLite::Statement insert(database, "INSERT OR REPLACE INTO usage VALUES(?, ?, ?, ?)");
        insert.bind(1, userId);
        insert.bind(2, started);
        insert.bind(3, now);
        insert.bind(4, due ? now : reminded);
        insert.exec();
        if (!due)
            return std::nullopt;
        const auto minutes = (now - started) / minuteMs;
        return boost::json::object{
            {"minutes", minutes},
            {"message", "我们已经连续聊了 " + std::to_string(minutes) + " 分钟。起来走走、喝口水吧，我不会跑掉。"}};
    });
}

} // namespace lmp::sandbox
