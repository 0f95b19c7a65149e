#pragma once

#include <QLoggingCategory>

namespace lmp {

/// What becomes of the windows themselves.
Q_DECLARE_LOGGING_CATEGORY(logWindow)

} // namespace lmp
