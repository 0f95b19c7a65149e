#pragma once

#include "conversation/ConversationDeliveryState.h"
#include "conversation/ConversationPartDTO.h"
#include "conversation/ConversationSelectionDTO.h"
#include "conversation/TalkRole.h"
#include "conversation/UsedMemory.h"

#include <QList>
#include <QString>

#include <boost/describe.hpp>

#include <optional>

namespace lmp {

/// One message of a conversation with one's twin.
///
/// A value. An absent delivery state counts as delivered.
struct ConvMessageDTO {
    QString id; ///< unique in the conversation
    TalkRole role = TalkRole::user;
    QString text;
    std::optional<QList<UsedMemory>> used; ///< memories the reply drew on
    std::optional<QString> requestId;      ///< the service's id of the turn that made a reply
    std::optional<QList<ConversationPartDTO>> parts;
    std::optional<ConversationSelectionDTO> selection;      ///< the work or range it refers to
    std::optional<QString> workId;                          ///< the work it made or changed
    std::optional<ConversationDeliveryState> deliveryState; ///< of a user message
    std::optional<QString> replyToUserMessageId;            ///< of a reply: the message answered
    JsonRest rest;
    bool operator==(const ConvMessageDTO &) const = default;
};
BOOST_DESCRIBE_STRUCT(ConvMessageDTO, (),
                      (id, role, text, used, requestId, parts, selection, workId, deliveryState, replyToUserMessageId,
                       rest))

} // namespace lmp
