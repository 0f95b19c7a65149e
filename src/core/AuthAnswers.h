#pragma once

#include "core/UserInfo.h"

namespace lmp {

/// What every way of signing in answers.
struct AuthResponse {
    UserInfo userInfo;
    QString token;
    std::optional<QString> type; ///< "register" when the account was made just now
    bool operator==(const AuthResponse &) const = default;

    bool isNewAccount() const { return type == QStringLiteral("register"); }
};
BOOST_DESCRIBE_STRUCT(AuthResponse, (), (userInfo, token, type))

struct MeResponse {
    UserInfo userInfo;
};
BOOST_DESCRIBE_STRUCT(MeResponse, (), (userInfo))

struct SendCodeResponse {
    std::optional<bool> ok;
    std::optional<QString> devCode; ///< a development service tells the code that it would have sent
};
BOOST_DESCRIBE_STRUCT(SendCodeResponse, (), (ok, devCode))

struct ResetResp {
    std::optional<bool> ok;
};
BOOST_DESCRIBE_STRUCT(ResetResp, (), (ok))

} // namespace lmp
