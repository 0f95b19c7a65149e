#include "SandboxOptions.h"

#include <charconv>
#include <chrono>
#include <cstdlib>
#include <limits>
#include <map>

namespace lmp::sandbox {

namespace {

std::string environment(const char *name) {
    const char *value = std::getenv(name);
    return value ? value : "";
}

std::filesystem::path defaultState() {
    auto base = environment("XDG_DATA_HOME");
    if (base.empty())
        base = environment("HOME") + "/.local/share";
    return std::filesystem::path(base) / "Lumenpair" / "sandbox" / "state.sqlite";
}

bool readNumber(const std::string &text, int low, int high, int &value) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < low || number > high)
        return false;
    value = number;
    return true;
}

struct NumberFlag {
    int *target;
    int low;
    int high;
};

} // namespace

std::variant<SandboxOptions, SandboxOptions::Request, std::string>
SandboxOptions::parse(const std::vector<std::string> &arguments) {
    SandboxOptions options;
    options.state = defaultState();
    options.modelUrl = environment("LUMENPAIR_MODEL_URL");
    options.modelKey = environment("LUMENPAIR_MODEL_KEY");
    options.modelName = environment("LUMENPAIR_MODEL");
    const int most = std::numeric_limits<int>::max();
    const std::map<std::string, NumberFlag> numbers{
        {"--port", {&options.port, 0, 65535}},
        {"--pace-ms", {&options.paceMs, 0, 10'000}},
        {"--stream-cap", {&options.streamCap, 1, options.poolSize - 8}},
        {"--continuous-minutes", {&options.continuousMinutes, 0, most}},
        {"--guest-rounds", {&options.guestRounds, 0, 1000}},
    };
    if (const auto pace = environment("LUMENPAIR_SANDBOX_PACE_MS");
        !pace.empty() && !readNumber(pace, 0, 10'000, options.paceMs))
        return "LUMENPAIR_SANDBOX_PACE_MS 应为 0 到 10000 的整数。";

    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const auto &flag = arguments[i];
        if (flag == "--help")
            return Request::help;
        if (flag == "--version")
            return Request::version;
        if (flag == "--exit-with-parent") {
            options.exitWithParent = true;
            continue;
        }
        const auto number = numbers.find(flag);
        const bool known = number != numbers.end() || flag == "--state" || flag == "--google-client-id";
        if (!known)
            return "不认识的参数：" + flag;
        if (i + 1 == arguments.size() || arguments[i + 1].empty())
            return "参数 " + flag + " 缺少值。";
        const auto &value = arguments[++i];
        if (flag == "--state")
            options.state = value;
        else if (flag == "--google-client-id")
            options.googleClientIds.push_back(value);
        else if (!readNumber(value, number->second.low, number->second.high, *number->second.target))
            return std::string("参数 ").append(flag).append(" 的值不对：").append(value);
    }
    return options;
}

std::string SandboxOptions::helpText() {
    return "lumenpair-sandbox：Lumenpair 的本地沙盒服务，只供试用和测试，不可用于正式环境。\n\n"
           "  --port N                固定端口（默认任意空闲端口）\n"
           "  --state FILE            状态文件（SQLite）\n"
           "  --exit-with-parent      标准输入结束时退出\n"
           "  --pace-ms N             离线回答每一小段之间的毫秒数（默认 25）\n"
           "  --stream-cap N          同时进行的流式回答上限（默认 16）\n"
           "  --continuous-minutes N  连续使用多少分钟后提醒（默认 60）\n"
           "  --guest-rounds N        试聊的轮数（默认 5）\n"
           "  --google-client-id ID   额外接受的 Google 客户端编号\n"
           "  --version, --help\n\n"
           "环境变量 LUMENPAIR_MODEL_URL、LUMENPAIR_MODEL_KEY、LUMENPAIR_MODEL 接上兼容 OpenAI 接口的模型。\n";
}

std::int64_t SandboxOptions::now() const {
    if (clock)
        return clock();
    const auto since = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(since).count();
}

} // namespace lmp::sandbox
