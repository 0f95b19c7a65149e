#pragma once

#include "dev/DevEngineFailure.h"
#include "dev/DevProcess.h"

#include <expected>

namespace lmp {

/// How Claude Code is started, so that it takes turns as lines and asks us about every tool. Free of state.
class ClaudeTransport {
public:
    struct Options {
        QString directory = {};
        std::optional<QString> resume = {}; ///< the session to go on with
        std::optional<QString> model = {};
    };

    /// Its child, running. Blocks like DevProcess::launch.
    /// @param program a name to be looked for, or an absolute path
    static std::expected<std::shared_ptr<DevProcess>, DevEngineFailure> launch(QString program, Options options);

    static QStringList arguments(const Options &options);
};

} // namespace lmp
