#pragma once

#include "dev/DevPermissionDecision.h"
#include "dev/DevPermissionPolicy.h"
#include "dev/DevPermissionRequest.h"
#include "dev/codex/CodexItems.h"

namespace lmp {

/// An approval that Codex asks for: what the policy has to judge, what the user is shown, and how it is answered. A
/// value.
struct CodexQuestion {
    enum class Kind { Command, FileChange, Permissions, McpTool };

    Kind kind = Kind::Command;
    JsonRpcId rpcId = {};
    QString tool = {};                   ///< as it is shown
    QString summary = {};                ///< one line
    QString input = {};                  ///< all of it, as JSON
    DevPermissionPolicy::Call call = {}; ///< what the policy judges
    /// It goes beyond what any mode lets pass, so the user is asked; where nothing may be written at all it is
    /// declined.
    bool mustAsk = false;
    boost::json::value permissions = {}; ///< what Permissions asks for

    /// @param items those of the thread: a question about a change does not repeat it
    /// @param repository the session's folder
    /// @return none for a request that is no question of these kinds
    static std::optional<CodexQuestion> of(const codex_message::Request &request, const CodexItems &items,
                                           const QString &repository);

    /// What the user is asked.
    DevPermissionRequest request() const;
    /// The result that answers it.
    boost::json::value answer(DevPermissionDecision::Kind decision) const;
};

} // namespace lmp
