#pragma once

#include <boost/json/object.hpp>

#include <memory>

namespace lmp {

/// The keys of a JSON object that its record has no field for. A record that has a described member of this type reads
/// them into it and writes them back, so that an older client does not erase what a newer service added.
///
/// A value, and no larger than a pointer pair while there are none; copies share. Any thread.
struct JsonRest {
    std::shared_ptr<const boost::json::object> keys; ///< null when there are none
    bool operator==(const JsonRest &other) const {
        return keys == other.keys || (keys && other.keys && *keys == *other.keys);
    }
};

} // namespace lmp
