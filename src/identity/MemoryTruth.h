#pragma once

#include <boost/describe.hpp>

namespace lmp {

/// How sure a memory is; the names are the service's.
enum class MemoryTruth {
    fact,  ///< the owner said or confirmed it
    pref,  ///< a preference of the owner
    inf,   ///< inferred by the twin
    canon, ///< part of the story, not of the owner's life
};
BOOST_DESCRIBE_ENUM(MemoryTruth, fact, pref, inf, canon)

} // namespace lmp
