#pragma once

#include <QString>

namespace lmp {

/// The title of a conversation that nobody has named. Free of state; any thread.
class ConversationTitle {
public:
    /// The longest, in characters as a person counts them.
    static constexpr int maxCharacters = 24;

    /// The first line of the first message that says anything, cut where it gets long.
    static QString of(const QString &firstMessage);
};

} // namespace lmp
