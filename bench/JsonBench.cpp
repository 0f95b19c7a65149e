// A long conversation into records and back: ours beside what one would write by hand on the same library, on Qt's own
// documents and on a popular header.

#include "SampleConversation.h"

#include "core/Json.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <cstdio>

namespace lmp::bench {

using namespace Qt::StringLiterals;

namespace {

constexpr int messageCount = 20'000;

namespace ours {

SampleConversation read(const QByteArray &text) {
    return Json::decode<SampleConversation>(text).value_or(SampleConversation());
}

} // namespace ours

namespace by_hand {

using boost::json::object;
using boost::json::value;

QString text(const value &from) {
    const auto &found = from.as_string();
    return QString::fromUtf8(found.data(), qsizetype(found.size()));
}

SampleAttachment attachment(const object &from) {
    SampleAttachment to{text(from.at("kind")), text(from.at("url")), {}};
    if (const auto *size = from.if_contains("size"))
        to.size = size->as_int64();
    return to;
}

SampleMessage message(const object &from) {
    SampleMessage to;
    to.id = text(from.at("id"));
    to.role = text(from.at("role"));
    to.content = text(from.at("content"));
    to.createdAt = from.at("createdAt").as_int64();
    to.edited = from.at("edited").as_bool();
    if (const auto *reply = from.if_contains("replyTo"); reply && reply->is_string())
        to.replyTo = text(*reply);
    if (const auto *score = from.if_contains("score"))
        to.score = score->to_number<double>();
    if (const auto *tags = from.if_contains("tags")) {
        to.tags.emplace();
        for (const auto &tag : tags->as_array())
            to.tags->append(text(tag));
    }
    if (const auto *found = from.if_contains("attachment"))
        to.attachment = attachment(found->as_object());
    return to;
}

SampleConversation read(const QByteArray &bytes) {
    boost::json::monotonic_resource memory;
    const value root = boost::json::parse({bytes.data(), std::size_t(bytes.size())}, &memory);
    SampleConversation to{text(root.at("id")), text(root.at("title")), {}};
    const auto &messages = root.at("messages").as_array();
    to.messages.reserve(messages.size());
    for (const auto &one : messages)
        to.messages.push_back(message(one.as_object()));
    return to;
}

} // namespace by_hand

namespace qt {

SampleAttachment attachment(const QJsonObject &from) {
    SampleAttachment to{from["kind"_L1].toString(), from["url"_L1].toString(), {}};
    if (const auto size = from["size"_L1]; size.isDouble())
        to.size = size.toInteger();
    return to;
}

SampleMessage message(const QJsonObject &from) {
    SampleMessage to;
    to.id = from["id"_L1].toString();
    to.role = from["role"_L1].toString();
    to.content = from["content"_L1].toString();
    to.createdAt = from["createdAt"_L1].toInteger();
    to.edited = from["edited"_L1].toBool();
    if (const auto reply = from["replyTo"_L1]; reply.isString())
        to.replyTo = reply.toString();
    if (const auto score = from["score"_L1]; score.isDouble())
        to.score = score.toDouble();
    if (const auto tags = from["tags"_L1]; tags.isArray()) {
        to.tags.emplace();
        for (const auto &tag : tags.toArray())
            to.tags->append(tag.toString());
    }
    if (const auto found = from["attachment"_L1]; found.isObject())
        to.attachment = attachment(found.toObject());
    return to;
}

SampleConversation read(const QByteArray &text) {
    const QJsonObject root = QJsonDocument::fromJson(text).object();
    SampleConversation to{root["id"_L1].toString(), root["title"_L1].toString(), {}};
    const QJsonArray messages = root["messages"_L1].toArray();
    to.messages.reserve(std::size_t(messages.size()));
    for (const auto &one : messages)
        to.messages.push_back(message(one.toObject()));
    return to;
}

} // namespace qt

namespace nlohmann_header {

using nlohmann::json;

QString text(const json &from) {
    return QString::fromStdString(from.get_ref<const std::string &>());
}

SampleAttachment attachment(const json &from) {
    SampleAttachment to{text(from.at("kind")), text(from.at("url")), {}};
    if (const auto size = from.find("size"); size != from.end())
        to.size = size->get<qint64>();
    return to;
}

SampleMessage message(const json &from) {
    SampleMessage to;
    to.id = text(from.at("id"));
    to.role = text(from.at("role"));
    to.content = text(from.at("content"));
    to.createdAt = from.at("createdAt").get<qint64>();
    to.edited = from.at("edited").get<bool>();
    if (const auto reply = from.find("replyTo"); reply != from.end() && reply->is_string())
        to.replyTo = text(*reply);
    if (const auto score = from.find("score"); score != from.end())
        to.score = score->get<double>();
    if (const auto tags = from.find("tags"); tags != from.end()) {
        to.tags.emplace();
        for (const auto &tag : *tags)
            to.tags->append(text(tag));
    }
    if (const auto found = from.find("attachment"); found != from.end())
        to.attachment = attachment(*found);
    return to;
}

SampleConversation read(const QByteArray &bytes) {
    const json root = json::parse(bytes.begin(), bytes.end());
    SampleConversation to{text(root.at("id")), text(root.at("title")), {}};
    const auto &messages = root.at("messages");
    to.messages.reserve(messages.size());
    for (const auto &one : messages)
        to.messages.push_back(message(one));
    return to;
}

} // namespace nlohmann_header

/// As a service sends it: with a key that the records do not know.
QByteArray textOf(const SampleConversation &conversation) {
    return Json::encode(conversation).replace("\"edited\":", "\"meta\":{\"client\":\"desktop\",\"v\":3},\"edited\":");
}

void reading(benchmark::State &state, SampleConversation (*read)(const QByteArray &)) {
    const auto conversation = SampleConversation::ofMessages(messageCount);
    const QByteArray text = textOf(conversation);
    if (read(text) != conversation) {
        state.SkipWithError("the records differ");
        return;
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(read(text));
    state.SetBytesProcessed(int64_t(state.iterations()) * text.size());
}

void writing(benchmark::State &state) {
    const auto conversation = SampleConversation::ofMessages(messageCount);
    const auto size = Json::encode(conversation).size();
    for (auto _ : state)
        benchmark::DoNotOptimize(Json::encode(conversation));
    state.SetBytesProcessed(int64_t(state.iterations()) * size);
}

BENCHMARK_CAPTURE(reading, ours, ours::read);
BENCHMARK_CAPTURE(reading, by_hand, by_hand::read);
BENCHMARK_CAPTURE(reading, qt, qt::read);
BENCHMARK_CAPTURE(reading, nlohmann, nlohmann_header::read);
BENCHMARK(writing);

} // namespace

} // namespace lmp::bench

BENCHMARK_MAIN();
