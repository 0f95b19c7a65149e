#pragma once

#include "conversation/ConversationPartDTO.h"
#include "conversation/ConversationSelectionDTO.h"

#include <QList>

namespace lmp {

/// What is in a conversation's input box.
struct ConversationInput {
    QString text;
    QList<ConversationPartDTO> parts; ///< attachments
    QString intent;                   ///< a ConversationIntent, or what a newer client wrote
    std::optional<ConversationSelectionDTO> selection;
    std::optional<QString> retryMessageId; ///< the failed message that is tried again
    bool operator==(const ConversationInput &) const = default;

    /// No text, no attachments and no target: nothing to keep.
    bool isEmpty() const { return text.isEmpty() && parts.isEmpty() && !selection; }
};
BOOST_DESCRIBE_STRUCT(ConversationInput, (), (text, parts, intent, selection, retryMessageId))

} // namespace lmp
