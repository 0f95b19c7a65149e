#pragma once

#include "conversation/UsedMemory.h"

#include <QList>
#include <QString>

#include <boost/describe.hpp>
#include <boost/json/value.hpp>

#include <optional>

namespace lmp {

/// One frame of a streamed reply. The safety blocks stay as they came: they are read leniently, so that they never
/// spoil a frame that was charged.
struct ChatStreamFrame {
    std::optional<QString> delta; ///< next piece of the reply
    std::optional<QList<UsedMemory>> usedMemories;
    std::optional<bool> done; ///< true on the closing frame
    std::optional<qint64> pipCharged;
    std::optional<qint64> balance;
    std::optional<QString> requestId;
    std::optional<QString> error; ///< "stream_aborted" ends the stream
    std::optional<boost::json::value> safety;
    std::optional<boost::json::value> continuousUse;
    bool operator==(const ChatStreamFrame &) const = default;
};
BOOST_DESCRIBE_STRUCT(ChatStreamFrame, (),
                      (delta, usedMemories, done, pipCharged, balance, requestId, error, safety, continuousUse))

} // namespace lmp
