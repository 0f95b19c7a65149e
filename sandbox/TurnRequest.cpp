#include "TurnRequest.h"

#include "JsonFields.h"
#include "SandboxFailure.h"

namespace lmp::sandbox {

TurnRequest TurnRequest::fromJson(const boost::json::object &object) {
    const JsonFields fields(object);
    TurnRequest request;
    std::size_t index = 0;
    for (const auto &item : fields.list("messages")) {
        const auto where = "messages[" + std::to_string(index++) + "]";
        if (!item.is_object())
            throw SandboxFailure::badField(where, "对象");
        const JsonFields turn(item.as_object(), where + ".");
        ChatTurn entry{turn.text("role"), turn.text("content", JsonFields::anyLength)};
        if (entry.role != "user" && entry.role != "assistant")
            throw SandboxFailure::badField(where + ".role", "user 或 assistant");
        request.messages.push_back(std::move(entry));
    }
    if (request.messages.empty() || request.messages.back().role != "user")
        throw SandboxFailure::badField("messages", "以用户的话结尾的数组");
    const auto maxTokens = fields.optionalInteger("maxTokens").value_or(800);
    if (maxTokens < 1 || maxTokens > 100'000)
        throw SandboxFailure::badField("maxTokens", "1 到 100000 的整数");
    request.maxTokens = static_cast<int>(maxTokens);
    request.companion = fields.optionalText("companion").value_or("");
    request.mode = fields.optionalText("mode").value_or("");
    request.incognito = fields.optionalBool("incognito").value_or(false);
    fields.optionalText("surface");
    return request;
}

} // namespace lmp::sandbox
