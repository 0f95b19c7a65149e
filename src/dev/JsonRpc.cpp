#include "dev/JsonRpc.h"

#include <cmath>
#include <utility>

namespace lmp {

std::optional<qint64> JsonRpcId::number() const {
    if (const auto *whole = value.if_int64())
        return *whole;
    if (const auto *whole = value.if_uint64(); whole && std::in_range<qint64>(*whole))
        return qint64(*whole);
    return std::nullopt;
}

std::optional<JsonRpcEnvelope> JsonRpcEnvelope::of(const boost::json::value &message) {
    const auto *object = message.if_object();
    if (!object)
        return std::nullopt;
    const auto field = [object](const char *name) -> const boost::json::value * {
        const auto *found = object->if_contains(name);
        return found && !found->is_null() ? found : nullptr;
    };
    JsonRpcEnvelope envelope{.id = field("id"), .params = field("params")};
    if (const auto *method = object->if_contains("method")) {
        const auto *name = method->if_string();
        if (!name)
            return std::nullopt;
        envelope.method = std::string_view(*name);
        envelope.kind = envelope.id ? Kind::Request : Kind::Notification;
        return envelope;
    }
    envelope.kind = Kind::Response;
    envelope.error = field("error");
    // A result may be null, so it is its key that counts.
    envelope.result = envelope.error ? nullptr : object->if_contains("result");
    if (!envelope.id || (!envelope.error && !envelope.result))
        return std::nullopt;
    return envelope;
}

QString JsonRpcEnvelope::errorMessage() const {
    if (!error)
        return {};
    if (const auto *text = error->if_string())
        return detail::jsonText(*text);
    const auto *object = error->if_object();
    const auto *message = object ? object->if_contains("message") : nullptr;
    const auto *text = message ? message->if_string() : nullptr;
    return text ? detail::jsonText(*text) : QString();
}

} // namespace lmp
