#include "FaultRule.h"

#include "JsonFields.h"
#include "SandboxFailure.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace lmp::sandbox {

namespace {

constexpr std::array<std::string_view, 15> knownKeys{
    "route",   "times", "delayMs", "status", "body",   "contentType",        "cutAfterEvents", "stallAfterEvents",
    "garbage", "empty", "abort",   "noDone", "charge", "garbageAfterEvents", "chunkBytes"};

std::optional<std::int64_t> boundedInteger(const JsonFields &fields, std::string_view key, std::int64_t low,
                                           std::int64_t high) {
    const auto value = fields.optionalInteger(key);
    if (value && (*value < low || *value > high))
        throw SandboxFailure::badField(std::string(key),
                                       std::to_string(low) + " 到 " + std::to_string(high) + " 的整数");
    return value;
}

} // namespace

FaultRule FaultRule::fromJson(const boost::json::object &object) {
    // A mistyped key would silently test nothing.
    for (const auto &entry : object) {
        const std::string_view key(entry.key().data(), entry.key().size());
        if (std::find(knownKeys.begin(), knownKeys.end(), key) == knownKeys.end())
            throw SandboxFailure(400, "bad_field", "不认识的字段「" + std::string(key) + "」。");
    }
    constexpr std::int64_t many = 1'000'000'000;
    const JsonFields fields(object);
    FaultRule rule;
    rule.route = fields.text("route");
    if (rule.route.starts_with("/api/"))
        rule.route.erase(0, 4);
    rule.times = boundedInteger(fields, "times", -1, many).value_or(1);
    rule.delayMs = boundedInteger(fields, "delayMs", 0, 600'000).value_or(0);
    if (const auto status = boundedInteger(fields, "status", 200, 599))
        rule.status = static_cast<int>(*status);
    if (const auto *body = object.if_contains("body"); body && !body->is_null())
        rule.body = body->is_string() ? std::string(body->as_string()) : boost::json::serialize(*body);
    rule.contentType = fields.optionalText("contentType", 100).value_or("application/json; charset=utf-8");
    if (std::any_of(rule.contentType.begin(), rule.contentType.end(), [](unsigned char c) { return c < ' '; }))
        throw SandboxFailure::badField("contentType", "一行文字");
    rule.cutAfterEvents = boundedInteger(fields, "cutAfterEvents", 0, many);
    rule.stallAfterEvents = boundedInteger(fields, "stallAfterEvents", 0, many);
    rule.garbageAfterEvents = boundedInteger(fields, "garbageAfterEvents", 0, many);
    if (fields.optionalBool("garbage").value_or(false) && !rule.garbageAfterEvents)
        rule.garbageAfterEvents = 0;
    rule.chunkBytes = boundedInteger(fields, "chunkBytes", 1, many).value_or(0);
    rule.charge = fields.optionalBool("charge").value_or(false);
    rule.empty = fields.optionalBool("empty").value_or(false);
    rule.abort = fields.optionalBool("abort").value_or(false);
    rule.noDone = fields.optionalBool("noDone").value_or(false);
    return rule;
}

boost::json::object FaultRule::toJson() const {
    boost::json::object object{{"route", route}, {"times", times}};
    if (delayMs > 0)
        object["delayMs"] = delayMs;
    if (status)
        object["status"] = *status;
    if (body)
        object["body"] = *body;
    if (cutAfterEvents)
        object["cutAfterEvents"] = *cutAfterEvents;
    if (stallAfterEvents)
        object["stallAfterEvents"] = *stallAfterEvents;
    if (garbageAfterEvents)
        object["garbageAfterEvents"] = *garbageAfterEvents;
    if (chunkBytes > 0)
        object["chunkBytes"] = chunkBytes;
    for (const auto &[name, on] : {std::pair{"charge", charge}, {"empty", empty}, {"abort", abort}, {"noDone", noDone}})
        if (on)
            object[name] = true;
    return object;
}

bool FaultRule::matches(const std::string &path) const {
    const std::string_view plain =
        path.starts_with("/api/") ? std::string_view(path).substr(4) : std::string_view(path);
    const std::string_view wanted = route;
    return wanted.ends_with('*') ? plain.starts_with(wanted.substr(0, wanted.size() - 1)) : plain == wanted;
}

} // namespace lmp::sandbox
