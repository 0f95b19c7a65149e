// Keeps the client's telemetry so that a test can read it back. An event that arrives again is kept once. Owned by
// SandboxServices; any thread. Failures are SandboxFailure.
#pragma once
#include <boost/json.hpp>

namespace lmp::sandbox {

class SandboxDatabase;
struct SandboxOptions;

class TelemetryLog {
public:
    TelemetryLog(SandboxDatabase &database, const SandboxOptions &options);

    /// Stores one batch {context, consent, events, sentAt}; throws 400 naming what is wrong, and stores nothing then.
    void add(const boost::json::object &batch);
    /// {"events": [...]} in the order they came, each with the context, consent and sentAt of its batch.
    boost::json::object all();

private:
    SandboxDatabase &m_database;
    const SandboxOptions &m_options;
};

} // namespace lmp::sandbox
