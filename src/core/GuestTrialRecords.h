#pragma once

#include <QString>

#include <boost/describe.hpp>

#include <optional>

namespace lmp {

struct GuestSession {
    QString token;
    qint64 roundsLeft = 0;
    std::optional<QString> note;
};
BOOST_DESCRIBE_STRUCT(GuestSession, (), (token, roundsLeft, note))

struct SessionResp {
    GuestSession guest;
};
BOOST_DESCRIBE_STRUCT(SessionResp, (), (guest))

struct ChatBody {
    QString guestToken;
    QString message;
};
BOOST_DESCRIBE_STRUCT(ChatBody, (), (guestToken, message))

struct ChatResp {
    QString reply;
    std::optional<QString> stardust;
    qint64 roundsLeft = 0;
};
BOOST_DESCRIBE_STRUCT(ChatResp, (), (reply, stardust, roundsLeft))

} // namespace lmp
