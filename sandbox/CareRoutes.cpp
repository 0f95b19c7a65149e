// What needs no account: crisis numbers, the table of capabilities, the update manifest, telemetry.
#include "CapabilityTable.h"
#include "CrisisDirectory.h"
#include "SandboxRouter.h"
#include "SandboxServices.h"

namespace lmp::sandbox {

void addCareRoutes(SandboxRouter &router, SandboxServices &services) {
    router.get("/api/app/crisis-resources", [](const SandboxRequest &request) {
        return SandboxAnswer::json(CrisisDirectory::list(request.param("region")));
    });
    router.get("/api/app/capabilities", [&services](const SandboxRequest &request) {
        return SandboxAnswer::json(CapabilityTable::of(request.param("platform"), services.voice.hasModel()));
    });
    // The running build, so that nothing is ever offered but by a fault.
    router.get("/downloads/desktop/mac/latest.json", [](const SandboxRequest &) {
        return SandboxAnswer::json({{"version", LMP_VERSION},
                                    {"build", std::stoll(LMP_BUILD)},
                                    {"url", "https://downloads.invalid/lumenpair"},
                                    {"notes", "本地沙盒没有安装包。"}});
    });
    router.post("/api/telemetry/events", [&services](const SandboxRequest &request) {
        services.telemetry.add(request.json());
        return SandboxAnswer::json({{"ok", true}});
    });
}

} // namespace lmp::sandbox
