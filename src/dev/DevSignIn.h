#pragma once

#include "dev/DevEngineKind.h"
#include "dev/DevProcess.h"

namespace lmp {

/// What is said with a tool to sign its user in: lines in, lines out; knows no I/O.
///
/// One for an attempt, one thread. Lines it does not understand mean nothing.
class DevSignIn {
public:
    DevSignIn() = default;
    virtual ~DevSignIn() = default;
    DevSignIn(const DevSignIn &) = delete;
    DevSignIn &operator=(const DevSignIn &) = delete;

    /// What a line from the tool leads to.
    struct Step {
        QByteArrayList write = {};
        std::optional<QString> url = {}; ///< to be opened in the browser
        bool done = false;               ///< the user is signed in
        std::optional<QString> failure = {};
    };

    /// @return none for an engine that has no tool
    static std::unique_ptr<DevSignIn> of(DevEngineKind kind);

    virtual DevProcess::Command command() const = 0;
    /// The lines to begin with.
    virtual QByteArrayList opening() = 0;
    virtual Step read(QByteArrayView line) = 0;

    /// How long the user may take, and what is said when that was not enough.
    virtual std::chrono::seconds limit() const = 0;
    virtual QString lateText() const = 0;
    /// The tool is gone.
    virtual QString deadText() const = 0;

    /// @return whether an address may be handed to the browser
    static bool isWebAddress(const QString &url);
};

} // namespace lmp
