#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace lmp {

/// The lines that Claude Code reads, without their line feeds. A line that it cannot parse ends it, so all of them are
/// made here. Free of state; any thread.
class ClaudeCommand {
public:
    static QByteArray turn(const QString &text);

    /// @param updatedInput the input to go on with, as JSON; versions before 2.1.300 refuse an answer without it
    static QByteArray allow(const QString &requestId, const std::optional<QString> &updatedInput);
    /// @param interrupt ends the turn as well
    static QByteArray deny(const QString &requestId, const QString &message, bool interrupt);
    static QByteArray unsupported(const QString &requestId);
    static QByteArray interrupt(const QString &requestId);
};

} // namespace lmp
