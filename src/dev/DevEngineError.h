#pragma once

#include <QString>

namespace lmp {

/// Why an engine refused. `message` is the sentence shown, as it stands.
struct DevEngineError {
    enum class Kind { notInstalled, server, busy, notLoggedIn };

    Kind kind = Kind::server;
    QString message = {};
    bool operator==(const DevEngineError &) const = default;

    /// @param name the tool's
    static DevEngineError notInstalled(const QString &name);
    static DevEngineError server(QString message);
    static DevEngineError busy();
    static DevEngineError notLoggedIn();
};

} // namespace lmp
