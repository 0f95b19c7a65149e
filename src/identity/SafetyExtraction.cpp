#include "identity/SafetyExtraction.h"

#include "core/Json.h"
#include "core/PlainLabel.h"

namespace lmp {

namespace {

/// No list of helplines is longer, and nobody reads one that is.
constexpr qsizetype mostResources = 50;

const boost::json::value *under(const boost::json::value &from, std::string_view key) {
    const auto *object = from.if_object();
    return object ? object->if_contains(key) : nullptr;
}

/// The field if it is there and of the right type.
template <class T>
std::optional<T> field(const boost::json::value &from, std::string_view key) {
    const auto *value = under(from, key);
    if (!value)
        return std::nullopt;
    auto read = Json::fromValue<T>(*value);
    return read ? std::optional(*std::move(read)) : std::nullopt;
}

std::optional<QList<CrisisResource>> resources(const boost::json::value &safety) {
    const auto *value = under(safety, "resources");
    const auto *array = value ? value->if_array() : nullptr;
    if (!array)
        return std::nullopt;
    QList<CrisisResource> found;
    for (const auto &entry : *array) {
        const auto resource = Json::fromValue<CrisisResource>(entry);
        if (resource && found.size() < mostResources)
            found.push_back({PlainLabel::line(resource->label), resource->phone});
    }
    return found;
}

} // namespace

std::optional<CrisisSignal> SafetyExtraction::crisis(const boost::json::value &answer) {
    const auto *block = under(answer, "safety");
    const auto read = block ? envelope(*block) : std::nullopt;
    return read ? signal(*read) : std::nullopt;
}

std::optional<ContinuousUseNotice> SafetyExtraction::continuousUse(const boost::json::value &answer) {
    const auto *block = under(answer, "continuousUse");
    return block ? notice(*block) : std::nullopt;
}

std::optional<SafetyEnvelope> SafetyExtraction::envelope(const boost::json::value &safety) {
    if (!safety.is_object())
        return std::nullopt;
    return SafetyEnvelope{
        .crisis = field<bool>(safety, "crisis"),
        .guidance = field<QString>(safety, "guidance"),
        .resources = resources(safety),
        .region = field<QString>(safety, "region"),
        .layer = field<QString>(safety, "layer"),
        .assumedRegion = field<bool>(safety, "assumedRegion"),
        .resourcesVerified = field<bool>(safety, "resourcesVerified"),
    };
}

std::optional<CrisisSignal> SafetyExtraction::signal(const SafetyEnvelope &envelope) {
    if (!envelope.crisis.value_or(false))
        return std::nullopt;
    return CrisisSignal{
        .guidance = PlainLabel::content(envelope.guidance.value_or(QString())),
        .resources = envelope.resources.value_or(QList<CrisisResource>()),
        .region = envelope.region.transform([](const QString &region) { return PlainLabel::line(region); }),
        .layer = envelope.layer,
        .assumedRegion = envelope.assumedRegion.value_or(false),
        .resourcesVerified = envelope.resourcesVerified.value_or(false),
    };
}

std::optional<ContinuousUseNotice> SafetyExtraction::notice(const boost::json::value &block) {
    auto read = Json::fromValue<ContinuousUseNotice>(block);
    if (!read)
        return std::nullopt;
    read->message = PlainLabel::content(read->message);
    return *std::move(read);
}

} // namespace lmp
