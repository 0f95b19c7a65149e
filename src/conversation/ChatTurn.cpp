#include "conversation/ChatTurn.h"

namespace lmp {

using namespace Qt::StringLiterals;

RelayChatStreamRequest ChatTurn::ask(const ConversationDTO &conversation, const QString &messageId, bool cheaper) {
    RelayChatStreamRequest request;
    for (const ConvMessageDTO &message : ConversationMessageDelivery::context(conversation, messageId))
        request.messages.push_back({message.role == TalkRole::twin ? u"assistant"_s : u"user"_s, message.text});
    request.maxTokens = cheaper ? 300 : 800;
    request.mode = conversation.mode;
    return request;
}

} // namespace lmp
