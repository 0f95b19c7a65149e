#pragma once

#include "conversation/ConversationDTO.h"

namespace lmp {

/// What is shown of one message: taken from the conversation, so that a view never reads behind its back.
///
/// A value; text is shared with the conversation, except that of a reply that still grows.
struct MessageRow {
    /// What is known of the message's delivery.
    enum class State { Delivered, Pending, Unknown, Failed };

    QString id;
    bool isTwin = false;
    QString text; ///< null while it grows: sharing it would make every piece cost a copy of all
    State state = State::Delivered;
    bool creation = false; ///< it made or changed a work
    bool growing = false;
    bool answered = false; ///< its reply is arriving
    bool retryOffered = false;
    bool grouped = false; ///< the message before it is of the same speaker
    int usedCount = 0;
    bool operator==(const MessageRow &) const = default;

    /// @param growingId of the reply that is arriving, or empty
    static MessageRow of(const ConversationDTO &conversation, qsizetype index, const QString &growingId);
    /// The sentence of the state under the message; empty when it was delivered.
    QString stateText() const;
};

} // namespace lmp
