// Emergency and listening numbers by region. Widely published numbers, but nobody here has rung them, so everything is
// marked unverified. Constant data; any thread.
#pragma once
#include <boost/json.hpp>
#include <string>

namespace lmp::sandbox {

class CrisisDirectory {
public:
    /// The list of a region code such as "CN"; an unknown one has no items, an empty one means mainland China, assumed.
    static boost::json::object list(const std::string &region);
    /// The safety block of a reply, with the region guessed from the account's dial code ("+86"; may be empty).
    /// `layer` is how grave it is: "elevated" or "acute".
    static boost::json::object safetyBlock(const std::string &layer, const std::string &dialCode);
};

} // namespace lmp::sandbox
