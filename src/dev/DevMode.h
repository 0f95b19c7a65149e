#pragma once

#include <QString>

#include <boost/describe.hpp>

namespace lmp {

/// How much an agent may do without asking.
enum class DevMode {
    readOnly,    ///< no file is written, no command runs
    acceptEdits, ///< files are edited without asking, commands ask
    full,        ///< nothing asks but risky commands and places where secrets are kept
};
BOOST_DESCRIBE_ENUM(DevMode, readOnly, acceptEdits, full)

/// The tier's name for people.
QString devModeName(DevMode mode);

} // namespace lmp
