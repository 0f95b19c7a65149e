#pragma once

#include "core/APIError.h"

#include <optional>

namespace lmp {

/// What a failed request of a turn means for the turn. A value; any thread.
struct TurnVerdict {
    enum class Kind {
        Refused,     ///< definitely not delivered and not charged
        Unavailable, ///< the streaming route is not offered; nothing was delivered
        Unconfirmed, ///< whether it was delivered and charged is not known
    };
    Kind kind = Kind::Unconfirmed;
    QString text; ///< the sentence shown; empty when the route is not offered
    bool operator==(const TurnVerdict &) const = default;

    /// @param textArrived whether a part of the reply had come
    static TurnVerdict ofStream(const APIError &error, bool textArrived);
    static TurnVerdict ofPlain(const APIError &error);
};

} // namespace lmp
