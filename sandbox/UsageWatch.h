// How long each user has been talking without a pause of ten minutes. Keeps times only, never what was said. Owned by
// SandboxServices; any thread.
#pragma once
#include <boost/json.hpp>
#include <optional>
#include <string>

namespace lmp::sandbox {

class SandboxDatabase;
struct SandboxOptions;

class UsageWatch {
public:
    UsageWatch(SandboxDatabase &database, const SandboxOptions &options);

    /// Notes one completed turn. A reminder {"minutes", "message"} once the threshold is reached, and then again after
    /// each further quarter of an hour, so that it does not nag on every turn.
    std::optional<boost::json::object> noteTurn(const std::string &userId);

private:
    SandboxDatabase &m_database;
    const SandboxOptions &m_options;
};

} // namespace lmp::sandbox
