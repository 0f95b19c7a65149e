#include "conversation/ConversationMessageDelivery.h"

#include "conversation/ConversationTexts.h"

#include <algorithm>
#include <utility>

namespace lmp {

namespace {

bool isDelivered(const ConvMessageDTO &message) {
    return message.deliveryState.value_or(ConversationDeliveryState::submitted) == ConversationDeliveryState::submitted;
}

qsizetype indexOf(const ConversationDTO &conversation, const QString &id) {
    const auto &messages = conversation.messages;
    const auto found = std::find_if(messages.rbegin(), messages.rend(), [&](const auto &m) { return m.id == id; });
    return found == messages.rend() ? -1 : messages.rend() - found - 1;
}

} // namespace

QString ConversationMessageDelivery::reason(Failure failure) {
    switch (failure) {
    case Failure::staleRetry:
        return ConversationTexts::retryStale();
    }
    return {};
}

QList<ConvMessageDTO> ConversationMessageDelivery::context(const ConversationDTO &conversation,
                                                           const QString &sendingId) {
    QList<ConvMessageDTO> seen;
    seen.reserve(conversation.messages.size());
    std::ranges::copy_if(conversation.messages, std::back_inserter(seen),
                         [&](const ConvMessageDTO &m) { return isDelivered(m) || m.id == sendingId; });
    return seen;
}

const ConvMessageDTO *ConversationMessageDelivery::find(const ConversationDTO &conversation, const QString &id) {
    const auto at = indexOf(conversation, id);
    return at < 0 ? nullptr : &conversation.messages.at(at);
}

ConvMessageDTO *ConversationMessageDelivery::find(ConversationDTO &conversation, const QString &id) {
    const auto at = indexOf(conversation, id);
    return at < 0 ? nullptr : &conversation.messages[at];
}

bool ConversationMessageDelivery::setState(ConversationDTO &conversation, const QString &id,
                                           ConversationDeliveryState state) {
    auto *message = find(conversation, id);
    if (message)
        message->deliveryState = state;
    return message != nullptr;
}

bool ConversationMessageDelivery::recover(ConversationDTO &conversation) {
    const auto pending = [](const ConvMessageDTO &m) {
        return m.deliveryState == ConversationDeliveryState::pending;
    };
    // Looked for first, so that a list that others share is copied only when there is something to change.
    if (std::ranges::none_of(std::as_const(conversation.messages), pending))
        return false;
    for (ConvMessageDTO &message : conversation.messages) {
        if (pending(message))
            message.deliveryState = ConversationDeliveryState::unknown;
    }
    return true;
}

} // namespace lmp
