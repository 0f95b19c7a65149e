#pragma once

#include <QString>

#include <boost/describe.hpp>

#include <optional>

namespace lmp {

/// What the person thinks of a reply. A value.
struct FeedbackReq {
    QString polarity; ///< "positive" or "negative"
    std::optional<QString> reason = {};
    QString conversationId = {};
    QString messageId = {};
    std::optional<QString> requestId = {};
};
BOOST_DESCRIBE_STRUCT(FeedbackReq, (), (polarity, reason, conversationId, messageId, requestId))

} // namespace lmp
