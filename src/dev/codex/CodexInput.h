#pragma once

#include "dev/codex/CodexItem.h"

namespace lmp {

/// What the user is shown whole of a command, when it is run and when it is asked about.
struct CodexCommandInput {
    QString command = {};
    std::optional<QString> cwd = {};
    std::optional<QString> reason = {}; ///< of a question
};
BOOST_DESCRIBE_STRUCT(CodexCommandInput, (), (command, cwd, reason))

/// The same of a change of files.
struct CodexChangeInput {
    QList<CodexFileChange> changes = {};
    std::optional<QString> grantRoot = {}; ///< of a question
    std::optional<QString> reason = {};    ///< of a question
};
BOOST_DESCRIBE_STRUCT(CodexChangeInput, (), (changes, grantRoot, reason))

} // namespace lmp
