#include "screens/chat/MessageRow.h"

#include "conversation/ConversationTexts.h"

#include <algorithm>

namespace lmp {

namespace {

/// How far back the message that a reply answered is looked for.
constexpr qsizetype farthestAnswered = 200;

MessageRow::State stateOf(const ConvMessageDTO &message) {
    switch (message.deliveryState.value_or(ConversationDeliveryState::submitted)) {
    case ConversationDeliveryState::pending:
        return MessageRow::State::Pending;
    case ConversationDeliveryState::failed:
        return MessageRow::State::Failed;
    case ConversationDeliveryState::unknown:
        return MessageRow::State::Unknown;
    case ConversationDeliveryState::submitted:
        break;
    }
    return MessageRow::State::Delivered;
}

/// Whether another answer may be asked for: not while it is open whether the first one was charged.
bool offersRetry(const ConversationDTO &conversation, qsizetype index) {
    const ConvMessageDTO &reply = conversation.messages.at(index);
    const qsizetype last = std::max<qsizetype>(0, index - farthestAnswered);
    for (qsizetype at = index - 1; at >= last; --at) {
        const ConvMessageDTO &message = conversation.messages.at(at);
        if (message.role != TalkRole::user || (reply.replyToUserMessageId && message.id != reply.replyToUserMessageId))
            continue;
        const auto state = stateOf(message);
        return state != MessageRow::State::Unknown && state != MessageRow::State::Pending;
    }
    return last > 0;
}

} // namespace

MessageRow MessageRow::of(const ConversationDTO &conversation, qsizetype index, const QString &growingId) {
    const ConvMessageDTO &message = conversation.messages.at(index);
    MessageRow row;
    row.id = message.id;
    row.isTwin = message.role == TalkRole::twin;
    row.state = stateOf(message);
    row.creation = message.workId.has_value();
    row.growing = row.isTwin && !growingId.isEmpty() && message.id == growingId;
    if (!row.growing)
        row.text = message.text;
    row.answered = !row.isTwin && !growingId.isEmpty() && index + 1 < conversation.messages.size() &&
                   conversation.messages.at(index + 1).id == growingId;
    row.retryOffered =
        row.isTwin ? !row.growing && offersRetry(conversation, index) : row.state == MessageRow::State::Failed;
    row.grouped = index > 0 && conversation.messages.at(index - 1).role == message.role;
    row.usedCount = int(message.used ? message.used->size() : 0);
    return row;
}

QString MessageRow::stateText() const {
    switch (state) {
    case State::Pending:
        if (creation)
            return ConversationTexts::creationReceiptPending();
        return answered ? ConversationTexts::replyArriving() : ConversationTexts::awaitingReply();
    case State::Unknown:
        return creation ? ConversationTexts::unknownCreation() : ConversationTexts::unknownMessage();
    case State::Failed:
        return QStringLiteral("未送达");
    case State::Delivered:
        break;
    }
    return {};
}

} // namespace lmp
