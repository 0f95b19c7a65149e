// What this sandbox can do, feature by feature, as it tells the client. Free of state; any thread.
#pragma once
#include <boost/json.hpp>
#include <string>

namespace lmp::sandbox {

class CapabilityTable {
public:
    /// The table for `platform`, empty for the desktop. It differs, in its version too, with a model behind the twin.
    static boost::json::object of(const std::string &platform, bool hasModel);
};

} // namespace lmp::sandbox
