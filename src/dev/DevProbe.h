#pragma once

#include "dev/DevReadiness.h"
#include "dev/DevRun.h"

#include <functional>

namespace lmp {

/// Finds out whether an agent's command-line tool is there and signed in, by asking the tool itself; its credentials
/// are never read.
///
/// Free of state. The tasks take a second or two, resume on the calling thread, which must run an event loop, and never
/// fail: what could not be found out is `unknown`.
class DevProbe {
public:
    /// What a login state's command came back with: signed in or not, or none when it cannot be told.
    using Login = std::function<QCoro::Task<std::optional<bool>>(QString path)>;

    /// A tool and how it is spoken of.
    struct Tool {
        QString name = {};
        QString missingHint = {};
        QString loggedOutHint = {};
        Login login = {};
    };
    static Tool claude();
    /// Asks `codex login status`, which knows nothing of model providers with a key of their own; give it another
    /// `login` where the application server can be asked.
    static Tool codex();

    static QCoro::Task<DevReadiness> run(Tool tool);

    /// Runs the tool with `arguments` somewhere harmless.
    static QCoro::Task<std::expected<DevRun, DevProcess::Failure>> ask(QString path, QStringList arguments);

    /// What the tools print for their login state.
    static std::optional<bool> claudeLogin(QByteArrayView output);
    static std::optional<bool> codexLogin(const QString &output);
};

} // namespace lmp
