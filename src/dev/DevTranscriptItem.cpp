#include "dev/DevTranscriptItem.h"

#include <array>

namespace lmp {

namespace {

constexpr std::array<std::string_view, 8> names = {"user",       "assistant", "tool",    "file",
                                                   "permission", "turn",      "failure", "notice"};
static_assert(names.size() == std::variant_size_v<DevTranscriptItem::Case>);

template <std::size_t I = 0>
std::expected<DevTranscriptItem, QString> decodeCase(std::string_view name, const boost::json::value &fields) {
    if constexpr (I == names.size()) {
        return std::unexpected(QStringLiteral("Unknown key."));
    } else {
        if (name != names[I])
            return decodeCase<I + 1>(name, fields);
        using Case = std::variant_alternative_t<I, DevTranscriptItem::Case>;
        auto read = Json::fromValue<Case>(fields);
        if (!read)
            return std::unexpected(read.error().describe(Json::typeName<Case>()));
        return DevTranscriptItem{*std::move(read)};
    }
}

} // namespace

QString DevTranscriptItem::id() const {
    return std::visit([](const auto &fields) { return fields.id; }, item);
}

QString DevTranscriptItem::at() const {
    return std::visit([](const auto &fields) { return fields.at; }, item);
}

std::expected<DevTranscriptItem, QString> DevTranscriptItem::decode(QByteArrayView text) {
    const auto parsed = Json::decode<boost::json::value>(text);
    if (!parsed)
        return std::unexpected(parsed.error().describe(QStringLiteral("DevTranscriptItem")));
    const auto *object = parsed->if_object();
    if (!object || object->size() != 1)
        return std::unexpected(QStringLiteral("Invalid number of keys found, expected one."));
    const auto &only = *object->begin();
    return decodeCase({only.key().data(), only.key().size()}, only.value());
}

QByteArray DevTranscriptItem::encode() const {
    const auto fields = std::visit([](const auto &value) { return Json::encode(value); }, item);
    return "{\"" + QByteArray(names[item.index()].data(), qsizetype(names[item.index()].size())) + "\":" + fields + '}';
}

} // namespace lmp
