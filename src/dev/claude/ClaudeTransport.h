#pragma once

#include "dev/DevProcess.h"

namespace lmp {

/// How Claude Code is started, so that it takes turns as lines and asks us about every tool. Free of state.
class ClaudeTransport {
public:
    struct Options {
        QString directory = {};
        std::optional<QString> resume = {}; ///< the session to go on with
        std::optional<QString> model = {};
    };

    /// @param program a name to be looked for, or an absolute path
    static DevProcess::Command command(QString program, const Options &options);

    static QStringList arguments(const Options &options);
};

} // namespace lmp
