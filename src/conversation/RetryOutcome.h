#pragma once

#include <QString>

namespace lmp {

/// How asking for another answer has ended.
struct RetryOutcome {
    QString messageId{};      ///< the new reply; empty when there is none
    QString text{};           ///< the sentence shown; null when the reply is in the conversation
    bool unconfirmed = false; ///< the service may have answered all the same, and may have charged for it
    bool free = false;        ///< the service said that it was not charged
};

} // namespace lmp
