#pragma once

#include <QString>

#include <boost/describe.hpp>

#include <optional>

namespace lmp {

/// Asks for a new answer to a user message.
struct RetryReq {
    QString conversationId;
    QString userMessageId;
    std::optional<QString> editedInput; ///< the corrected input, when it was edited first
    bool operator==(const RetryReq &) const = default;
};
BOOST_DESCRIBE_STRUCT(RetryReq, (), (conversationId, userMessageId, editedInput))

} // namespace lmp
