#pragma once

#include <QList>
#include <QString>

#include <boost/describe.hpp>
#include <boost/json/value.hpp>

#include <optional>

namespace lmp {

/// What a change does to its file.
struct CodexChangeKind {
    QString type = {}; ///< "add", "delete", "update"
    std::optional<QString> move_path = {};
    bool operator==(const CodexChangeKind &) const = default;
};
BOOST_DESCRIBE_STRUCT(CodexChangeKind, (), (type, move_path))

/// One file of a fileChange item.
struct CodexFileChange {
    QString path = {};
    CodexChangeKind kind = {};
    std::optional<QString> diff = {}; ///< hunks of an update; of an added or deleted file the bare text
    bool operator==(const CodexFileChange &) const = default;
};
BOOST_DESCRIBE_STRUCT(CodexFileChange, (), (path, kind, diff))

/// One step of a turn as Codex reports it: a message, a command, a change of files, a call of a tool. A record; which
/// fields there are depends on the type, and new types come without a warning.
struct CodexItem {
    QString type = {};
    QString id = {};
    std::optional<QString> text = {};                   ///< agentMessage
    std::optional<QString> command = {};                ///< commandExecution, with the shell around it
    std::optional<QString> cwd = {};                    ///< commandExecution
    std::optional<QString> aggregatedOutput = {};       ///< commandExecution, all it has printed
    std::optional<qint64> exitCode = {};                ///< commandExecution
    std::optional<QString> status = {};                 ///< "inProgress", "completed", "failed", "declined"
    std::optional<QList<CodexFileChange>> changes = {}; ///< fileChange
    std::optional<QString> server = {};                 ///< mcpToolCall
    std::optional<QString> tool = {};                   ///< mcpToolCall
    std::optional<boost::json::value> arguments = {};   ///< mcpToolCall
    std::optional<boost::json::value> result = {};      ///< mcpToolCall
    std::optional<boost::json::value> error = {};       ///< mcpToolCall
    std::optional<QString> query = {};                  ///< webSearch
};
BOOST_DESCRIBE_STRUCT(CodexItem, (),
                      (type, id, text, command, cwd, aggregatedOutput, exitCode, status, changes, server, tool,
                       arguments, result, error, query))

} // namespace lmp
