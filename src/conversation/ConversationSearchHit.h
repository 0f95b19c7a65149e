#pragma once

#include "conversation/SearchTerms.h"
#include "conversation/TalkRole.h"

namespace lmp {

/// One message that holds what was looked for. A value.
struct ConversationSearchHit {
    qint64 place = 0; ///< where it stands among all messages, the latest highest; `ConversationSearchIndex` counts
    QString conversationId;
    QString title; ///< of the conversation
    QString messageId;
    TalkRole role = TalkRole::user;
    QString excerpt;                 ///< one line around the first match
    QList<SearchTerms::Range> marks; ///< the matches in `excerpt`
    bool operator==(const ConversationSearchHit &) const = default;
};

} // namespace lmp
