#pragma once

#include "conversation/ConversationInput.h"
#include "conversation/ConversationWorkDTO.h"

namespace lmp {

/// What a confirmed send was bound to. It holds only while the screen's own values still equal it.
struct ConversationSendConfirmation {
    QString accountID;
    QString conversationID;
    std::optional<QString> credential; ///< the sign-in's generation
    bool incognito = false;
    ConversationInput input;
    std::optional<ConversationWorkDTO> targetSnapshot;
    std::optional<QString> ownerID; ///< the screen that asked
    bool operator==(const ConversationSendConfirmation &) const = default;

    /// @return the sentence shown when anything has changed since, else none
    std::optional<QString> staleAgainst(const ConversationSendConfirmation &now) const;
};

} // namespace lmp
