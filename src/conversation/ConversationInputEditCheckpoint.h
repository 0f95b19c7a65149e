#pragma once

#include "conversation/ConversationInput.h"

namespace lmp {

/// What is on disk of an input box, and whether the person has changed the box since. A value.
struct ConversationInputEditCheckpoint {
    std::optional<ConversationInput> baseline; ///< the input as last saved or restored
    bool edited = false;

    /// `input` stands in the box now.
    void compare(const ConversationInput &input) { edited = input != baseline.value_or(ConversationInput()); }
    /// The disk has `saved`, while `input` stands in the box.
    void settle(const ConversationInput &saved, const ConversationInput &input) {
        baseline = saved;
        compare(input);
    }
};

} // namespace lmp
