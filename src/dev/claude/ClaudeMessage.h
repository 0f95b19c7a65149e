#pragma once

#include "core/JsonCodec.h"
#include "dev/DevPermissionPolicy.h"
#include "dev/DevTurnUsage.h"

#include <variant>
#include <vector>

namespace lmp {

/// The kinds of lines that Claude Code writes, as far as they matter here.
namespace claude_message {

/// Comes before every turn.
struct Init {
    std::optional<QString> sessionId = {};
    std::optional<QString> model = {};
    std::optional<QString> version = {};
};
struct Text {
    QString text = {};
};
struct ToolUse {
    QString id = {};
    QString input = {}; ///< as JSON
    DevPermissionPolicy::Call call = {};
};
struct Said {
    std::vector<std::variant<Text, ToolUse>> blocks = {};
    bool byTool = false; ///< words of the tool itself, not of a model
};
struct ToolResult {
    QString id = {};
    QString output = {};
    bool isError = false;
};
struct ToolResults {
    std::vector<ToolResult> results = {};
};
struct TurnEnd {
    bool isError = false;
    QString text = {}; ///< empty when it says nothing that is meant for people
    DevTurnUsage usage = {};
};
/// May this tool be used?
struct Question {
    QString requestId = {};
    QString input = {}; ///< as JSON
    DevPermissionPolicy::Call call = {};
};
/// Nobody waits for the answer to a question any more.
struct Withdrawal {
    QString requestId = {};
};
/// A request that we do not know.
struct OtherRequest {
    QString requestId = {};
};
struct Other {};

} // namespace claude_message

/// One line of Claude Code's standard output. A value; any thread.
///
/// Versions differ in what they write, so what is missing or of another type is left empty, and what is unknown is
/// Other. Only a line that is no JSON fails to be one.
struct ClaudeMessage {
    std::variant<claude_message::Other, claude_message::Init, claude_message::Said, claude_message::ToolResults,
                 claude_message::TurnEnd, claude_message::Question, claude_message::Withdrawal,
                 claude_message::OtherRequest>
        what = {};

    /// @return none for a line that is no JSON
    static std::optional<ClaudeMessage> read(QByteArrayView line);
};

template <>
struct JsonCodec<ClaudeMessage> {
    static bool read(const boost::json::value &from, ClaudeMessage &to);
};

} // namespace lmp
