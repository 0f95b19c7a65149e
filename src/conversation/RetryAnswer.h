#pragma once

#include "conversation/ConversationDTO.h"
#include "conversation/RetryResp.h"
#include "core/Result.h"

namespace lmp {

/// Puts the answer of a retry into its conversation. Free of state; any thread.
class RetryAnswer {
public:
    /// The longest message id that is taken, in UTF-16 units.
    static constexpr qsizetype maxIdLength = 48;

    /// Appends the reply, unless the conversation has it already.
    /// @param userMessageId the message that is answered again
    /// @return an error without a status when the answer has no usable id, or its id belongs to something else; the
    /// conversation is then as it was
    static Result<void> apply(ConversationDTO &conversation, const RetryResp &answer, const QString &userMessageId);
};

} // namespace lmp
