// One account as read from the database. A plain value.
#pragma once
#include <boost/json.hpp>
#include <cstdint>
#include <string>

namespace SQLite {
class Statement;
}

namespace lmp::sandbox {

/// Milliseconds since 1970 as ISO 8601 in UTC.
std::string isoTime(std::int64_t milliseconds);

struct SandboxAccount {
    std::string id;
    std::string phone;
    std::string dialCode;
    std::string email;
    std::string username;
    std::string handle;
    std::string inviteCode;
    std::string password; ///< the hash; never leaves the sandbox
    std::string googleSubject;
    std::string appleSubject;
    std::int64_t balance = 0;
    std::int64_t createdAt = 0;

    /// The columns `fromRow` reads, in its order.
    static constexpr const char *columns = "id, phone, dial_code, email, username, handle, invite_code, password, "
                                           "google_subject, apple_subject, balance, created_at";
    static SandboxAccount fromRow(SQLite::Statement &row);
    /// What the client is told of its user; absent values are left out.
    boost::json::object userInfo() const;
};

} // namespace lmp::sandbox
