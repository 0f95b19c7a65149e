#pragma once

#include "conversation/ConversationInput.h"
#include "conversation/ConversationWorkDTO.h"

namespace lmp {

/// What a send is about, in a conversation that has works. A value; stored as its text.
class ConversationSendScope {
public:
    enum Value {
        discussion, ///< talk alone
        modify,     ///< change the selected work
        related,    ///< make a new work related to it
    };

    /// What a confirmed send was bound to. It holds only while the screen's own values still equal it.
    struct Confirmation {
        QString accountID;
        QString conversationID;
        std::optional<QString> credential; ///< the sign-in's generation
        bool incognito = false;
        ConversationInput input;
        std::optional<ConversationWorkDTO> targetSnapshot;
        std::optional<QString> ownerID; ///< the screen that asked
        bool operator==(const Confirmation &) const = default;

        /// @return the sentence shown when anything has changed since, else none
        std::optional<QString> staleAgainst(const Confirmation &now) const;
    };

    constexpr ConversationSendScope(Value value)
        : m_value(value) {}
    constexpr operator Value() const { return m_value; }

    QString text() const;
    /// None for a text that is no scope.
    static std::optional<ConversationSendScope> fromText(const QString &text);

private:
    Value m_value;
};
} // namespace lmp
