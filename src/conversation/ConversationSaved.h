#pragma once

#include <QString>

#include <optional>

namespace lmp {

/// What became of a save of a conversation. A value.
struct ConversationSaved {
    enum class Where {
        Nowhere, ///< there was nothing to save, or the conversation is incognito
        Service,
        Local, ///< in the draft cache alone
        Lost,  ///< nowhere but in memory: `text` says so
    };
    Where where = Where::Nowhere;
    bool conflict = false;
    std::optional<QString> text = {}; ///< the sentence shown, when it is not with the service
};

} // namespace lmp
