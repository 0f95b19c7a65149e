#include "platform/Log.h"

namespace lmp {

Q_LOGGING_CATEGORY(logPlatform, "com.tolvey.quillet.Platform", QtWarningMsg)
Q_LOGGING_CATEGORY(logNetwork, "com.tolvey.quillet.Network", QtWarningMsg)
Q_LOGGING_CATEGORY(logSession, "com.tolvey.quillet.Session", QtWarningMsg)
Q_LOGGING_CATEGORY(logTelemetry, "com.tolvey.quillet.Telemetry", QtWarningMsg)
Q_LOGGING_CATEGORY(logConversation, "com.tolvey.quillet.Conversation", QtWarningMsg)
Q_LOGGING_CATEGORY(logApplication, "com.tolvey.quillet.Application", QtWarningMsg)
Q_LOGGING_CATEGORY(logTermination, "com.tolvey.quillet.LocalTermination", QtWarningMsg)

} // namespace lmp
