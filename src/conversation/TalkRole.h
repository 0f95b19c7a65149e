#pragma once

#include <boost/describe.hpp>

namespace lmp {

/// Who spoke.
enum class TalkRole { user, twin };
BOOST_DESCRIBE_ENUM(TalkRole, user, twin)

} // namespace lmp
