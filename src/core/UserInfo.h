#pragma once

#include <QString>

#include <boost/describe.hpp>

#include <optional>

namespace lmp {

/// The signed-in person, as the service describes them.
struct UserInfo {
    QString id;
    std::optional<QString> phone = {};
    std::optional<QString> dialCode = {};
    std::optional<QString> email = {};
    std::optional<QString> username = {};
    std::optional<QString> realname = {};
    std::optional<QString> inviteCode = {};
    std::optional<QString> personalTenantId = {};
    std::optional<QString> createdAt = {};
    std::optional<QString> handle = {};
    std::optional<bool> legacyLinked = {}; ///< whether a provider's identity was tied to an account made earlier
    bool operator==(const UserInfo &) const = default;
};
BOOST_DESCRIBE_STRUCT(UserInfo, (),
                      (id, phone, dialCode, email, username, realname, inviteCode, personalTenantId, createdAt, handle,
                       legacyLinked))

} // namespace lmp
