#pragma once

#include <boost/describe.hpp>

namespace lmp {

/// What is known of a user message's delivery.
enum class ConversationDeliveryState {
    pending,   ///< sent, outcome not yet known
    failed,    ///< definitely not delivered and not charged; the input may be sent again
    unknown,   ///< the connection broke or ended early: whether it was answered and charged is not known
    submitted, ///< the service completed the turn; its reply may still be empty
};
BOOST_DESCRIBE_ENUM(ConversationDeliveryState, pending, failed, unknown, submitted)

} // namespace lmp
