#pragma once

#include "dev/DevFileChangeKind.h"
#include "dev/DevPermissionRequest.h"
#include "dev/DevTurnUsage.h"

#include <string_view>
#include <variant>

namespace lmp {

namespace dev_event {

/// The engine knows its session.
struct SessionStarted {
    std::optional<QString> engineSessionId = {}; ///< what a later session resumes by
    std::optional<QString> model = {};
    bool operator==(const SessionStarted &) const = default;
};
/// A piece of what the agent is saying.
struct AssistantDelta {
    QString text = {};
    bool operator==(const AssistantDelta &) const = default;
};
/// All of one thing the agent said; takes the place of the pieces before it.
struct AssistantText {
    QString text = {};
    bool operator==(const AssistantText &) const = default;
};
struct ToolCall {
    QString id = {};
    QString name = {};
    QString summary = {};
    QString input = {};
    bool operator==(const ToolCall &) const = default;
};
/// A call has ended. Every ToolCall gets one before its session ends.
struct ToolResult {
    QString id = {};
    QString output = {};
    bool isError = false;
    bool operator==(const ToolResult &) const = default;
};
struct FileChanged {
    QString path = {};
    DevFileChangeKind kind = DevFileChangeKind::modify;
    std::optional<qint64> added = {}; ///< lines
    std::optional<qint64> removed = {};
    bool operator==(const FileChanged &) const = default;
};
/// More of what a running command prints.
struct CommandOutput {
    QString id = {}; ///< of the tool call
    QString chunk = {};
    bool operator==(const CommandOutput &) const = default;
};
struct TurnCompleted {
    DevTurnUsage usage = {};
    bool operator==(const TurnCompleted &) const = default;
};
/// Something went wrong; the session stays open unless the stream ends after this.
struct Failed {
    QString reason = {};
    bool operator==(const Failed &) const = default;
};
/// A line for the transcript.
struct Notice {
    QString text = {};
    bool operator==(const Notice &) const = default;
};
/// The turn was stopped because the user wished it.
struct Interrupted {
    bool operator==(const Interrupted &) const = default;
};

BOOST_DESCRIBE_STRUCT(SessionStarted, (), (engineSessionId, model))
BOOST_DESCRIBE_STRUCT(AssistantDelta, (), (text))
BOOST_DESCRIBE_STRUCT(AssistantText, (), (text))
BOOST_DESCRIBE_STRUCT(ToolCall, (), (id, name, summary, input))
BOOST_DESCRIBE_STRUCT(ToolResult, (), (id, output, isError))
BOOST_DESCRIBE_STRUCT(FileChanged, (), (path, kind, added, removed))
BOOST_DESCRIBE_STRUCT(CommandOutput, (), (id, chunk))
BOOST_DESCRIBE_STRUCT(TurnCompleted, (), (usage))
BOOST_DESCRIBE_STRUCT(Failed, (), (reason))
BOOST_DESCRIBE_STRUCT(Notice, (), (text))
BOOST_DESCRIBE_STRUCT(Interrupted, (), ())

} // namespace dev_event

/// One thing that an engine has to tell. Values; any thread. Each case is a described record, so Json::encode of the
/// case is an object of its fields; that of a permission request is the request itself.
using DevEvent =
    std::variant<dev_event::SessionStarted, dev_event::AssistantDelta, dev_event::AssistantText, dev_event::ToolCall,
                 dev_event::ToolResult, dev_event::FileChanged, dev_event::CommandOutput, DevPermissionRequest,
                 dev_event::TurnCompleted, dev_event::Failed, dev_event::Notice, dev_event::Interrupted>;

/// The case's name, "sessionStarted" and the like.
constexpr std::string_view devEventName(const DevEvent &event) {
    constexpr std::string_view names[] = {"sessionStarted", "assistantDelta", "assistantText", "toolCall",
                                          "toolResult",     "fileChanged",    "commandOutput", "permissionRequest",
                                          "turnCompleted",  "failed",         "notice",        "interrupted"};
    static_assert(std::size(names) == std::variant_size_v<DevEvent>);
    return names[event.index()];
}

} // namespace lmp
