#include "SandboxRouter.h"

#include "SandboxFailure.h"

namespace lmp::sandbox {

SandboxAnswer SandboxRouter::answer(const SandboxRequest &request) const {
    const auto path = m_routes.find(request.path);
    if (path == m_routes.end())
        throw SandboxFailure(404, "unknown_route", "沙盒没有这个接口。");
    const auto handler = path->second.find(request.method);
    if (handler == path->second.end())
        throw SandboxFailure(405, "method_not_allowed", "这个接口不支持该方法。");
    return handler->second(request);
}

} // namespace lmp::sandbox
