#pragma once

#include "conversation/ConversationMessageDelivery.h"

namespace lmp {

/// How a turn ended, with all that is known of it. Absent means not known.
struct TurnOutcome {
    ConversationMessageDelivery::Reference reference = {};
    ConversationDeliveryState state = ConversationDeliveryState::unknown;
    QString text = {};                  ///< the reply, or as much of it as arrived
    std::optional<QString> reason = {}; ///< the sentence shown when it was not completed
    std::optional<QString> notice = {}; ///< the sentence shown when it was completed and charged, and is empty
    std::optional<QString> requestId = {};
    std::optional<qint64> charged = {}; ///< Pip
    std::optional<qint64> balance = {}; ///< Pip
    bool stopped = false;               ///< by the person
};

} // namespace lmp
