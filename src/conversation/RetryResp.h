#pragma once

#include "conversation/UsedMemory.h"

#include <QList>
#include <QString>

#include <boost/describe.hpp>

#include <optional>

namespace lmp {

/// A new answer to a user message.
struct RetryResp {
    QString messageId; ///< id of the new reply
    QString text;
    std::optional<QList<UsedMemory>> usedMemories;
    std::optional<QString> requestId;
    std::optional<bool> free; ///< it was not charged
    bool operator==(const RetryResp &) const = default;
};
BOOST_DESCRIBE_STRUCT(RetryResp, (), (messageId, text, usedMemories, requestId, free))

} // namespace lmp
