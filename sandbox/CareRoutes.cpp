// What needs no account: crisis numbers, the table of capabilities, telemetry.
#include "CrisisDirectory.h"
#include "SandboxRouter.h"
#include "SandboxServices.h"

namespace lmp::sandbox {

namespace {

boost::json::object feature(const char *id, const char *label, const char *level, const char *note) {
    boost::json::object entry{{"id", id}, {"label", label}, {"level", level}};
    if (*note)
        entry["note"] = note;
    return entry;
}

boost::json::object capabilities(const SandboxServices &services, const std::string &platform) {
    const bool model = services.voice.hasModel();
    const char *absent = "本地沙盒还没有这一项。";
    return {{"platform", platform.empty() ? "macos" : platform},
            // The table differs with the model, and clients compare versions.
            {"version", model ? 2 : 1},
            {"features",
             {feature("twin.chat", "和分身聊天", model ? "full" : "degraded",
                      model ? "" : "现在是离线分身，只照对话和记忆回应。"),
              feature("conversations", "对话记录", "full", ""), feature("guest", "试聊", "full", ""),
              feature("crisis", "求助热线", "degraded", "号码未经核实。"),
              feature("google", "Google 登录", "degraded", "由沙盒扮演 Google。"),
              feature("memory", "记忆账本", "none", absent), feature("social", "消息与联系人", "none", absent),
              feature("voice", "语音房", "none", absent), feature("posts", "动态", "none", absent)}}};
}

} // namespace

void addCareRoutes(SandboxRouter &router, SandboxServices &services) {
    router.get("/api/app/crisis-resources", [](const SandboxRequest &request) {
        return SandboxAnswer::json(CrisisDirectory::list(request.param("region")));
    });
    router.get("/api/app/capabilities", [&services](const SandboxRequest &request) {
        return SandboxAnswer::json(capabilities(services, request.param("platform")));
    });
    router.post("/api/telemetry/events", [&services](const SandboxRequest &request) {
        services.telemetry.add(request.json());
        return SandboxAnswer::json({{"ok", true}});
    });
}

} // namespace lmp::sandbox
