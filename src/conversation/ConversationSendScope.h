#pragma once

#include <QString>

#include <boost/describe.hpp>

#include <optional>

namespace lmp {

/// What a send is about, in a conversation that has works.
enum class ConversationSendScope {
    discussion, ///< talk alone
    modify,     ///< change the selected work
    related,    ///< make a new work related to it
};
BOOST_DESCRIBE_ENUM(ConversationSendScope, discussion, modify, related)

/// The scope stored as `text`; none for a text that is no scope.
std::optional<ConversationSendScope> conversationSendScope(const QString &text);

} // namespace lmp
