#include "conversation/RetryAnswer.h"

#include "conversation/ConversationTexts.h"

#include <algorithm>

namespace lmp {

namespace {

std::unexpected<APIError> refused(const QString &reason) {
    APIError error;
    error.reason = reason;
    return std::unexpected(error);
}

ConvMessageDTO replyOf(const RetryResp &answer, const QString &userMessageId) {
    ConvMessageDTO reply;
    reply.id = answer.messageId;
    reply.role = TalkRole::twin;
    reply.text = answer.text;
    reply.used = answer.usedMemories;
    reply.requestId = answer.requestId;
    reply.replyToUserMessageId = userMessageId;
    return reply;
}

/// Whether the conversation has this very reply. The service's own copy may leave out an empty list of memories and the
/// message it answers; what it does say must agree.
bool isSame(const ConvMessageDTO &there, const ConvMessageDTO &reply) {
    return there.role == reply.role && there.text == reply.text && there.requestId == reply.requestId &&
           there.used.value_or(QList<UsedMemory>()) == reply.used.value_or(QList<UsedMemory>()) &&
           there.replyToUserMessageId.value_or(*reply.replyToUserMessageId) == reply.replyToUserMessageId;
}

} // namespace

Result<void> RetryAnswer::apply(ConversationDTO &conversation, const RetryResp &answer, const QString &userMessageId) {
    if (answer.messageId.trimmed().isEmpty() || answer.messageId.size() > maxIdLength)
        return refused(ConversationTexts::retryWithoutMessageId());
    const auto reply = replyOf(answer, userMessageId);
    const auto &messages = std::as_const(conversation.messages);
    const auto there = std::ranges::find(messages, reply.id, &ConvMessageDTO::id);
    if (there == messages.end())
        conversation.messages.push_back(reply);
    else if (!isSame(*there, reply))
        return refused(ConversationTexts::retryMismatch());
    return {};
}

} // namespace lmp
