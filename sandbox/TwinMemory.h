// One thing the twin knows about its user. A plain value.
#pragma once
#include <string>

namespace lmp::sandbox {

struct TwinMemory {
    std::string slot;    ///< what there is only one of ("name", "home"); empty for what may pile up
    std::string content; ///< as it is shown, e.g. "喜欢爬山"
    std::string truth;   ///< "fact" or "pref"
    bool operator==(const TwinMemory &) const = default;
};

} // namespace lmp::sandbox
