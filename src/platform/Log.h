#pragma once

#include <QLoggingCategory>

namespace lmp {

/// The platform log, one category an area, all under the subsystem "com.tolvey.quillet".
///
/// A line never holds a token, a password, a code, a message text or a request body.
Q_DECLARE_LOGGING_CATEGORY(logPlatform)
Q_DECLARE_LOGGING_CATEGORY(logNetwork)
Q_DECLARE_LOGGING_CATEGORY(logSession)
Q_DECLARE_LOGGING_CATEGORY(logTelemetry)
Q_DECLARE_LOGGING_CATEGORY(logConversation)
Q_DECLARE_LOGGING_CATEGORY(logApplication)
Q_DECLARE_LOGGING_CATEGORY(logTermination)

} // namespace lmp
