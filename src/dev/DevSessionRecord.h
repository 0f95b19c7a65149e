#pragma once

#include "dev/DevEngineKind.h"
#include "dev/DevMode.h"

#include <optional>

namespace lmp {

/// A session of the workbench as it is kept: enough to list it and to resume it.
struct DevSessionRecord {
    QString id = {}; ///< the workbench's own
    DevEngineKind engine = DevEngineKind::claude;
    std::optional<QString> engineSessionId = {}; ///< what the engine resumes by
    QString cwd = {};                            ///< absolute path of the repository or worktree
    QString title = {};
    QString createdAt = {}; ///< ISO 8601, UTC
    QString updatedAt = {};
    DevMode mode = DevMode::acceptEdits;
    std::optional<QString> model = {}; ///< chosen for the session
    QString status = {};               ///< last known
    bool operator==(const DevSessionRecord &) const = default;
};
BOOST_DESCRIBE_STRUCT(DevSessionRecord, (),
                      (id, engine, engineSessionId, cwd, title, createdAt, updatedAt, mode, model, status))

} // namespace lmp
