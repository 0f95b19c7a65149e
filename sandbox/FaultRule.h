// One thing that shall go wrong with matching requests, switched on by whoever tries failure paths. A plain value.
#pragma once
#include <boost/json.hpp>
#include <cstdint>
#include <optional>
#include <string>

namespace lmp::sandbox {

struct FaultRule {
    std::string route;      ///< path without "/api"; a trailing "*" matches what begins so
    std::int64_t times = 1; ///< matches left; -1 never runs out
    std::int64_t delayMs = 0;
    std::optional<int> status;       ///< answered instead of running the route
    std::optional<std::string> body; ///< sent as it is
    std::string contentType;
    std::optional<std::int64_t> cutAfterEvents;
    std::optional<std::int64_t> stallAfterEvents;
    std::optional<std::int64_t> garbageAfterEvents;
    std::int64_t chunkBytes = 0; ///< writes are split into pieces of so many bytes
    bool charge = false;         ///< the spoiled turn is charged all the same
    bool empty = false;
    bool abort = false;
    bool noDone = false;

    /// Reads what POST /sandbox/faults takes; throws SandboxFailure 400 for unknown keys and wrong types.
    static FaultRule fromJson(const boost::json::object &object);
    boost::json::object toJson() const;

    bool matches(const std::string &path) const;
    /// True when the route itself does not run at all.
    bool replacesAnswer() const { return status.has_value() || body.has_value(); }
};

} // namespace lmp::sandbox
