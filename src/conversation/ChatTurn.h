#pragma once

#include "conversation/ConversationMessageDelivery.h"
#include "conversation/RelayChatStreamRequest.h"
#include "conversation/UsedMemory.h"

#include <stop_token>

namespace lmp {

/// A turn under way and what has become known of it. Shared by the view and the turn's own task; UI thread.
struct ChatTurn {
    ConversationMessageDelivery::Reference reference;
    QString signIn; ///< under which it was sent
    RelayChatStreamRequest request;
    QString replyId; ///< of the twin message, once there is any text
    bool textArrived = false;
    std::optional<QString> requestId;
    std::optional<QList<UsedMemory>> used;
    std::optional<qint64> charged; ///< Pip
    std::optional<qint64> balance; ///< Pip
    qint64 skippedFrames = 0;      ///< frames that did not decode
    QString skippedReason;         ///< the sentence of the first of them
    std::stop_source stop;

    /// The question for the relay: the turns that the twin may see, and how long the reply may be.
    static RelayChatStreamRequest ask(const ConversationDTO &conversation, const QString &messageId, bool cheaper);
};

} // namespace lmp
