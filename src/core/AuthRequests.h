#pragma once

#include <QString>

#include <boost/describe.hpp>

#include <optional>

namespace lmp {

// The bodies of AuthService's calls.

struct SendSmsReq {
    QString phone;
    QString dialCode;
};
BOOST_DESCRIBE_STRUCT(SendSmsReq, (), (phone, dialCode))

struct SendEmailReq {
    QString email;
};
BOOST_DESCRIBE_STRUCT(SendEmailReq, (), (email))

struct SmsLoginReq {
    QString phone;
    QString code;
    QString dialCode;
    std::optional<QString> inviteCode = {};
};
BOOST_DESCRIBE_STRUCT(SmsLoginReq, (), (phone, code, dialCode, inviteCode))

struct PwdLoginReq {
    QString phone;
    QString password;
};
BOOST_DESCRIBE_STRUCT(PwdLoginReq, (), (phone, password))

struct EmailLoginReq {
    QString email;
    QString password;
};
BOOST_DESCRIBE_STRUCT(EmailLoginReq, (), (email, password))

struct EmailRegisterReq {
    QString email;
    QString password;
    QString code;
    std::optional<QString> inviteCode = {};
};
BOOST_DESCRIBE_STRUCT(EmailRegisterReq, (), (email, password, code, inviteCode))

struct GoogleReq {
    QString idToken;
};
BOOST_DESCRIBE_STRUCT(GoogleReq, (), (idToken))

struct AppleReq {
    QString identityToken;
    std::optional<QString> fullName = {};
};
BOOST_DESCRIBE_STRUCT(AppleReq, (), (identityToken, fullName))

/// By phone: `phone` and `dialCode`; by e-mail: `email`.
struct ResetCodeReq {
    std::optional<QString> phone = {};
    std::optional<QString> email = {};
    std::optional<QString> dialCode = {};
};
BOOST_DESCRIBE_STRUCT(ResetCodeReq, (), (phone, email, dialCode))

struct ResetReq {
    std::optional<QString> phone = {};
    std::optional<QString> email = {};
    QString code;
    QString newPassword;
};
BOOST_DESCRIBE_STRUCT(ResetReq, (), (phone, email, code, newPassword))

} // namespace lmp
