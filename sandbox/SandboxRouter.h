// Which function answers which method and path. Filled once before the first request, then only read; any thread.
#pragma once
#include "SandboxAnswer.h"
#include "SandboxRequest.h"
#include <functional>
#include <map>
#include <set>

namespace lmp::sandbox {

struct SandboxServices;

class SandboxRouter {
public:
    using Handler = std::function<SandboxAnswer(const SandboxRequest &)>;

    void get(const std::string &path, Handler handler) { m_routes[path]["GET"] = std::move(handler); }
    void post(const std::string &path, Handler handler) { m_routes[path]["POST"] = std::move(handler); }
    void remove(const std::string &path, Handler handler) { m_routes[path]["DELETE"] = std::move(handler); }

    /// Throws SandboxFailure 404 "unknown_route" or 405 "method_not_allowed", and whatever the route throws.
    SandboxAnswer answer(const SandboxRequest &request) const;

private:
    std::map<std::string, std::map<std::string, Handler>> m_routes;
};

/// The routes by area; `services` must outlive the router.
void addAuthRoutes(SandboxRouter &router, SandboxServices &services);
void addConversationRoutes(SandboxRouter &router, SandboxServices &services);
void addRelayRoutes(SandboxRouter &router, SandboxServices &services);
void addMemoryRoutes(SandboxRouter &router, SandboxServices &services);
void addSpeechRoutes(SandboxRouter &router, SandboxServices &services);
void addCareRoutes(SandboxRouter &router, SandboxServices &services);
void addControlRoutes(SandboxRouter &router, SandboxServices &services);

/// Runs and charges the turn of a request whose answer a fault is about to replace.
void chargeReplacedTurn(SandboxServices &services, const SandboxRequest &request);

} // namespace lmp::sandbox
