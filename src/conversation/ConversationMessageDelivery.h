#pragma once

#include "conversation/ConversationDTO.h"

namespace lmp {

/// What is known of each user message's delivery, and what the twin may see because of it.
///
/// Free of state; any thread.
class ConversationMessageDelivery {
public:
    /// One user message of one conversation of one account.
    struct Reference {
        QString accountId; ///< the user's id, or "anonymous"
        QString conversationId;
        QString messageId;
        bool operator==(const Reference &) const = default;
    };
    enum class Failure { staleRetry };

    /// The sentence shown for a failure.
    static QString reason(Failure failure);

    /// The messages that the twin may see, in order: all that were delivered, and the one being sent.
    static QList<ConvMessageDTO> context(const ConversationDTO &conversation, const QString &sendingId);

    /// The message of that id, or null. Looks from the end, where the turn under way is.
    static const ConvMessageDTO *find(const ConversationDTO &conversation, const QString &id);
    static ConvMessageDTO *find(ConversationDTO &conversation, const QString &id);

    /// @return false when there is no such message; nothing changed then
    static bool setState(ConversationDTO &conversation, const QString &id, ConversationDeliveryState state);

    /// Every message still pending becomes unknown: what became of it can no longer be learned.
    /// @return whether one did
    static bool recover(ConversationDTO &conversation);
};

} // namespace lmp
