#pragma once

#include "conversation/ConvMessageDTO.h"

namespace lmp {

/// The one retry under way, if any. A value, owned by whoever runs the retry.
struct ConversationRetryState {
    struct Operation {
        QString id;    ///< fresh for every retry
        QString token; ///< the sign-in it was started under
        QString conversationId;
        QString sourceTwinId; ///< the reply being replaced; empty when the message never had one
        std::optional<QString> mode;
        ConvMessageDTO target; ///< the user message being answered again, as it was then
        bool operator==(const Operation &) const = default;
    };
    std::optional<Operation> active;
};

} // namespace lmp
