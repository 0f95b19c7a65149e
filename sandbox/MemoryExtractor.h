// Finds in a user's own words what is worth remembering: what is said outright, nothing inferred. Pure; any thread.
#pragma once
#include "TwinMemory.h"
#include <string_view>
#include <vector>

namespace lmp::sandbox {

class MemoryExtractor {
public:
    /// In the order of the text; questions yield nothing.
    static std::vector<TwinMemory> fromText(std::string_view text);
};

} // namespace lmp::sandbox
