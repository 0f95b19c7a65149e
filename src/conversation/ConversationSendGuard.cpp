#include "conversation/ConversationSendGuard.h"

#include "conversation/ConversationTexts.h"

namespace lmp {

std::optional<QString> ConversationSendGuard::heldBack(ConversationSendScope scope) const {
    if (reply || call)
        return ConversationTexts::heldByReply();
    if (creation && scope != ConversationSendScope::discussion)
        return ConversationTexts::heldByCreation();
    return std::nullopt;
}

} // namespace lmp
