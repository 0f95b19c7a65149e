#include "SandboxAccount.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <array>
#include <ctime>

namespace lmp::sandbox {

std::string isoTime(std::int64_t milliseconds) {
    const std::time_t seconds = milliseconds / 1000;
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    std::array<char, 32> text{};
    const auto size = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &parts);
    const auto fraction = std::to_string(1000 + milliseconds % 1000).substr(1);
    return std::string(text.data(), size) + "." + fraction + "Z";
}

SandboxAccount SandboxAccount::fromRow(SQLite::Statement &row) {
    SandboxAccount account;
    int column = 0;
    for (auto *field :
         {&account.id, &account.phone, &account.dialCode, &account.email, &account.username, &account.handle,
          &account.inviteCode, &account.password, &account.googleSubject, &account.appleSubject})
        *field = row.getColumn(column++).getString();
    account.balance = row.getColumn(column++).getInt64();
    account.createdAt = row.getColumn(column).getInt64();
    return account;
}

boost::json::object SandboxAccount::userInfo() const {
    boost::json::object info{{"id", id}};
    const std::array<std::pair<const char *, const std::string *>, 6> fields{{{"phone", &phone},
                                                                              {"dialCode", &dialCode},
                                                                              {"email", &email},
                                                                              {"username", &username},
                                                                              {"inviteCode", &inviteCode},
                                                                              {"handle", &handle}}};
    for (const auto &[name, value] : fields)
        if (!value->empty())
            info[name] = *value;
    info["personalTenantId"] = "personal_" + id;
    info["createdAt"] = isoTime(createdAt);
    // Only an account that some provider signs in to can have been linked to an earlier one.
    if (!googleSubject.empty() || !appleSubject.empty())
        info["legacyLinked"] = !phone.empty() || !password.empty();
    return info;
}

} // namespace lmp::sandbox
