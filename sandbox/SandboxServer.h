// The HTTP side of the sandbox: listens on the loopback address, checks who is asking, applies faults and turns answers
// and failures into bytes. Made, run and stopped by its owner; requests run on a pool of threads of its own.
#pragma once
#include "SandboxOptions.h"
#include <memory>
#include <string>

namespace lmp::sandbox {

struct SandboxServices;

class SandboxServer {
public:
    /// Opens the state file; throws std::exception when that fails.
    explicit SandboxServer(SandboxOptions options);
    /// Stops and joins.
    ~SandboxServer();

    /// Binds and begins to answer; false when the port cannot be had.
    bool start();
    int port() const;
    /// "http://127.0.0.1:PORT"
    std::string url() const;
    /// Ends listening and every wait, and joins; safe to call again. Streams under way are broken off, uncharged.
    void stop();

private:
    class Endpoint;
    std::unique_ptr<SandboxServices> m_services;
    std::unique_ptr<Endpoint> m_endpoint;
};

} // namespace lmp::sandbox
