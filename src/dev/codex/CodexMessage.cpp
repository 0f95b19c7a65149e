#include "dev/codex/CodexMessage.h"

#include <algorithm>
#include <array>

namespace lmp {

using namespace codex_message;

namespace {

template <class T>
void take(const boost::json::value &params, CodexMessage &to) {
    if (auto found = Json::fromValue<T>(params))
        to.what = *std::move(found);
}

struct Method {
    std::string_view name;
    void (*take)(const boost::json::value &, CodexMessage &);
};

// The most frequent ones first.
constexpr std::array methods{
    Method{"item/agentMessage/delta", take<MessageDelta>},
    Method{"item/commandExecution/outputDelta", take<OutputDelta>},
    Method{"item/started", take<ItemStarted>},
    Method{"item/completed", take<ItemCompleted>},
    Method{"thread/tokenUsage/updated", take<UsageUpdated>},
    Method{"serverRequest/resolved", take<RequestResolved>},
    Method{"turn/started", take<TurnStarted>},
    Method{"turn/completed", take<TurnCompleted>},
    Method{"error", take<Error>},
    Method{"model/rerouted", take<Rerouted>},
};

JsonRpcId idOf(const boost::json::value &id) {
    return {boost::json::value(id, boost::json::storage_ptr())};
}

} // namespace

bool CodexMessage::read(const boost::json::value &from, CodexMessage &to) {
    to.what = Other();
    const auto envelope = JsonRpcEnvelope::of(from);
    if (!envelope)
        return false;
    static const boost::json::value none = boost::json::object();
    const boost::json::value &params = envelope->params ? *envelope->params : none;
    switch (envelope->kind) {
    case JsonRpcEnvelope::Kind::Response: {
        Response response{.id = idOf(*envelope->id), .error = envelope->errorMessage()};
        if (envelope->result)
            response.result.emplace(*envelope->result, boost::json::storage_ptr());
        to.what = std::move(response);
        return true;
    }
    case JsonRpcEnvelope::Kind::Request:
        to.what = Request{.id = idOf(*envelope->id),
                          .method = detail::jsonText(envelope->method),
                          .params = boost::json::value(params, boost::json::storage_ptr())};
        return true;
    case JsonRpcEnvelope::Kind::Notification:
        break;
    }
    const auto known = std::ranges::find(methods, envelope->method, &Method::name);
    if (known != methods.end())
        known->take(params, to);
    return true;
}

} // namespace lmp
