#include "screens/shell/WindowLog.h"

namespace lmp {

Q_LOGGING_CATEGORY(logWindow, "com.tolvey.quillet.Window", QtWarningMsg)

} // namespace lmp
