#pragma once

#include "conversation/ConversationSendScope.h"

namespace lmp {

/// Whether an input may be sent now, or stays in its box because something else is under way.
///
/// A value; any thread.
struct ConversationSendGuard {
    bool reply = false;    ///< a reply is on its way
    bool call = false;     ///< a voice call is on
    bool creation = false; ///< a work is being made

    /// @return the sentence shown when the input is held back, else none
    std::optional<QString> heldBack(ConversationSendScope scope) const;
};

} // namespace lmp
