#include "CapabilityTable.h"

namespace lmp::sandbox {

namespace {

/// One feature; `nav` is the tab it belongs to, empty for none.
boost::json::object feature(const char *id, const char *label, const char *nav, const char *level, const char *note) {
    boost::json::object entry{{"id", id}, {"label", label}, {"level", level}};
    if (*nav)
        entry["nav"] = nav;
    if (*note)
        entry["note"] = note;
    return entry;
}

} // namespace

boost::json::object CapabilityTable::of(const std::string &platform, bool hasModel) {
    const char *offline = "现在是离线分身，只照对话和记忆回应。";
    return {{"platform", platform.empty() ? "macos" : platform},
            {"version", hasModel ? 2 : 1},
            {"features",
             {feature("twin.chat", "和分身聊天", "now", hasModel ? "full" : "degraded", hasModel ? "" : offline),
              feature("now", "此刻", "now", "degraded", "本地沙盒里，这里只有和分身的对话。"),
              feature("social", "社交", "social", "none", "本地沙盒还没有消息、联系人和匹配。"),
              feature("market", "市场", "market", "none", "本地沙盒还没有任务和市场。"),
              feature("studio", "工作室", "studio", "none", "本地沙盒还没有创作和开发工作台。"),
              feature("me", "我", "me", "degraded", "本地沙盒里，这里只有账号和设置。"),
              feature("conversations", "对话记录", "now", "full", ""), feature("guest", "试聊", "", "full", ""),
              feature("crisis", "求助热线", "", "degraded", "号码未经核实。"),
              feature("google", "Google 登录", "", "degraded", "由沙盒扮演 Google。"),
              feature("memory", "记忆账本", "me", "none", "本地沙盒还没有记忆账本。"),
              feature("voice", "语音房", "social", "none", "本地沙盒还没有语音房。"),
              feature("posts", "动态", "social", "none", "本地沙盒还没有动态。")}}};
}

} // namespace lmp::sandbox
