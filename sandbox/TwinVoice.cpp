#include "TwinVoice.h"

#include "ModelReply.h"
#include "OfflineReply.h"
#include "SandboxFailure.h"
#include "SandboxOptions.h"
#include "TwinResponder.h"

#include <array>
#include <ctime>

namespace lmp::sandbox {

namespace {

constexpr std::size_t mostMemories = 12;

void setTime(TwinContext &context, std::int64_t now) {
    const std::time_t seconds = now / 1000;
    std::tm local{};
    localtime_r(&seconds, &local);
    static constexpr std::array<const char *, 7> days{"日", "一", "二", "三", "四", "五", "六"};
    const auto two = [](int number) {
        return std::to_string(100 + number).substr(1);
    };
    context.hour = local.tm_hour;
    context.today = std::to_string(local.tm_year + 1900) + "年" + std::to_string(local.tm_mon + 1) + "月" +
                    std::to_string(local.tm_mday) + "日 星期" + days.at(static_cast<std::size_t>(local.tm_wday)) + " " +
                    two(local.tm_hour) + ":" + two(local.tm_min);
}

std::vector<TwinMemory> latest(const std::vector<TwinMemory> &memories) {
    const auto first = memories.size() > mostMemories ? memories.size() - mostMemories : 0;
    return {memories.begin() + static_cast<std::ptrdiff_t>(first), memories.end()};
}

std::string systemPrompt(const TwinContext &context, const std::vector<TwinMemory> &memories) {
    std::string text = "你是用户的分身，用中文、像熟人一样自然地说话，不编造关于用户的事，不知道就说不知道。现在是" +
                       context.today + "。";
    if (!context.companion.empty())
        text += "这次由角色「" + context.companion + "」来陪伴。";
    if (!context.mode.empty())
        text += "对话模式：" + context.mode + "。";
    if (context.brief)
        text += "回答尽量短。";
    if (context.crisisLayer)
        text += "用户可能处在危机中：先表达在意，请对方立刻联系真人、热线或急救，不做分析，不给方法。";
    if (!memories.empty()) {
        text += "\n你记得用户说过：";
        for (const auto &memory : memories)
            text += "\n- " + memory.content;
    }
    return text;
}

} // namespace

TwinVoice::TwinVoice(const SandboxOptions &options, const StopSignal &stop)
    : m_options(options)
    , m_stop(stop) {}

bool TwinVoice::hasModel() const {
    return !m_options.modelUrl.empty();
}

std::string TwinVoice::modelName() const {
    if (!hasModel())
        return "offline-twin";
    return m_options.modelName.empty() ? "default" : m_options.modelName;
}

TwinVoice::Speech TwinVoice::speak(TwinContext context, int maxTokens, bool paced) const {
    setTime(context, m_options.now());
    if (hasModel())
        return askModel(context, maxTokens);
    auto reply = TwinResponder::reply(context);
    const std::chrono::milliseconds pace(paced ? m_options.paceMs : 0);
    return {std::make_unique<OfflineReply>(reply.text, pace, m_stop), std::move(reply.used)};
}

TwinVoice::Speech TwinVoice::askModel(const TwinContext &context, int maxTokens) const {
    auto memories = latest(context.memories);
    std::vector<ChatTurn> messages{{"system", systemPrompt(context, memories)}};
    messages.insert(messages.end(), context.messages.begin(), context.messages.end());
    const auto endpoint = ModelEndpoint::fromUrl(m_options.modelUrl, m_options.modelKey, m_options.modelName);
    auto reply = std::make_unique<ModelReply>(endpoint, messages, maxTokens);
    while (!reply->settle(std::chrono::milliseconds(100)))
        if (m_stop.stopped())
            throw SandboxFailure(503, "stopping", "服务正在关闭。");
    if (reply->isVoid())
        throw SandboxFailure(502, "upstream_failed", "模型服务没有回应，这一轮没有计费。");
    return {std::move(reply), std::move(memories)};
}

} // namespace lmp::sandbox
