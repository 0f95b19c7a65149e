#pragma once

#include "dev/JsonRpc.h"
#include "dev/codex/CodexItem.h"

#include <variant>

namespace lmp {

namespace codex_message {

/// An answer to a request of ours.
struct Response {
    JsonRpcId id = {};
    std::optional<boost::json::value> result = {}; ///< none when it failed
    QString error = {};                            ///< why
};
/// A question of Codex that must be answered, whatever it is.
struct Request {
    JsonRpcId id = {};
    QString method = {};
    boost::json::value params = {};
};

struct ItemStarted {
    CodexItem item = {};
    std::optional<QString> threadId = {};
};
struct ItemCompleted {
    CodexItem item = {};
    std::optional<QString> threadId = {};
};
struct MessageDelta {
    QString itemId = {};
    QString delta = {};
    std::optional<QString> threadId = {};
};
struct OutputDelta {
    QString itemId = {};
    QString delta = {};
};
/// The tokens of the whole thread so far.
struct TokenTotal {
    std::optional<qint64> inputTokens = {};
    std::optional<qint64> outputTokens = {};
};
struct TokenUsage {
    TokenTotal total = {};
};
struct UsageUpdated {
    TokenUsage tokenUsage = {};
    std::optional<QString> threadId = {};
};
struct Rerouted {
    QString fromModel = {};
    QString toModel = {};
    std::optional<QString> reason = {};
};
struct Fault {
    std::optional<QString> message = {};
};
struct Error {
    Fault error = {};
    std::optional<bool> willRetry = {};
    std::optional<QString> threadId = {};
};
struct Turn {
    std::optional<QString> id = {};
    std::optional<QString> status = {}; ///< "completed", "interrupted", "failed"
    std::optional<Fault> error = {};
};
struct TurnStarted {
    Turn turn = {};
    std::optional<QString> threadId = {};
};
struct TurnCompleted {
    Turn turn = {};
    std::optional<QString> threadId = {};
};
/// A question has been answered, or Codex no longer asks it.
struct RequestResolved {
    JsonRpcId requestId = {};
};
/// Nothing to us.
struct Other {};

BOOST_DESCRIBE_STRUCT(ItemStarted, (), (item, threadId))
BOOST_DESCRIBE_STRUCT(ItemCompleted, (), (item, threadId))
BOOST_DESCRIBE_STRUCT(MessageDelta, (), (itemId, delta, threadId))
BOOST_DESCRIBE_STRUCT(OutputDelta, (), (itemId, delta))
BOOST_DESCRIBE_STRUCT(TokenTotal, (), (inputTokens, outputTokens))
BOOST_DESCRIBE_STRUCT(TokenUsage, (), (total))
BOOST_DESCRIBE_STRUCT(UsageUpdated, (), (tokenUsage, threadId))
BOOST_DESCRIBE_STRUCT(Rerouted, (), (fromModel, toModel, reason))
BOOST_DESCRIBE_STRUCT(Fault, (), (message))
BOOST_DESCRIBE_STRUCT(Error, (), (error, willRetry, threadId))
BOOST_DESCRIBE_STRUCT(Turn, (), (id, status, error))
BOOST_DESCRIBE_STRUCT(TurnStarted, (), (turn, threadId))
BOOST_DESCRIBE_STRUCT(TurnCompleted, (), (turn, threadId))
BOOST_DESCRIBE_STRUCT(RequestResolved, (), (requestId))

} // namespace codex_message

/// What one line of Codex says. A value; any thread.
///
/// Read with `Json::decode<CodexMessage>`, which parses the line once and copies nothing but what is kept. A line that
/// is no message fails; a notification that is not known, or not as it should be, is `Other`; a request is a request
/// whatever its parameters are, since the turn waits until it is answered.
struct CodexMessage {
    std::variant<codex_message::Other, codex_message::Response, codex_message::Request, codex_message::ItemStarted,
                 codex_message::ItemCompleted, codex_message::MessageDelta, codex_message::OutputDelta,
                 codex_message::UsageUpdated, codex_message::Rerouted, codex_message::Error, codex_message::TurnStarted,
                 codex_message::TurnCompleted, codex_message::RequestResolved>
        what = {};

    static bool read(const boost::json::value &from, CodexMessage &to);
};

template <>
struct JsonCodec<CodexMessage> {
    static bool read(const boost::json::value &from, CodexMessage &to) { return CodexMessage::read(from, to); }
};

} // namespace lmp
