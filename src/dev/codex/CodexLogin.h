#pragma once

#include <QCoroTask>
#include <QString>

#include <chrono>
#include <optional>

namespace lmp {

/// Asks Codex's application server whether it can be used. `codex login status` knows of Codex's own accounts only, and
/// takes a model provider that has a key of its own, or needs none, for signed out.
///
/// Free of state; any thread with an event loop, where the task resumes.
class CodexLogin {
public:
    /// @param path of the program
    /// @return none when the server does not say within `limit`
    static QCoro::Task<std::optional<bool>> ask(QString path,
                                                std::chrono::milliseconds limit = std::chrono::seconds(10));
};

} // namespace lmp
