#pragma once

#include <boost/describe.hpp>

namespace lmp {

/// How well a feature works on this platform, as the service judges it.
enum class CapabilityLevel { full, degraded, none };
BOOST_DESCRIBE_ENUM(CapabilityLevel, full, degraded, none)

} // namespace lmp
