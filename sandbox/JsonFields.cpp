#include "JsonFields.h"

#include "SandboxFailure.h"

namespace lmp::sandbox {

boost::json::object parseJsonObject(std::string_view body) {
    boost::json::parse_options options;
    options.max_depth = 64;
    boost::json::error_code error;
    auto value = boost::json::parse(boost::json::string_view(body.data(), body.size()), error, {}, options);
    if (error)
        throw SandboxFailure(400, "bad_json", "请求不是有效的 JSON。");
    if (!value.is_object())
        throw SandboxFailure(400, "bad_json", "请求应是一个 JSON 对象。");
    return std::move(value.as_object());
}

JsonFields::JsonFields(const boost::json::object &object, std::string where)
    : m_object(object)
    , m_where(std::move(where)) {}

std::string JsonFields::name(std::string_view key) const {
    return m_where + std::string(key);
}

const boost::json::value *JsonFields::find(std::string_view key) const {
    const auto *value = m_object.if_contains(boost::json::string_view(key.data(), key.size()));
    return value && !value->is_null() ? value : nullptr;
}

std::string JsonFields::text(std::string_view key, std::size_t maxLength) const {
    auto value = optionalText(key, maxLength);
    if (!value)
        throw SandboxFailure::badField(name(key), "字符串");
    return std::move(*value);
}

std::optional<std::string> JsonFields::optionalText(std::string_view key, std::size_t maxLength) const {
    const auto *value = find(key);
    if (!value)
        return std::nullopt;
    if (!value->is_string())
        throw SandboxFailure::badField(name(key), "字符串");
    if (value->as_string().size() > maxLength)
        throw SandboxFailure::badField(name(key), "不超过 " + std::to_string(maxLength) + " 字节的字符串");
    return std::string(value->as_string());
}

std::optional<std::int64_t> JsonFields::optionalInteger(std::string_view key) const {
    const auto *value = find(key);
    if (!value)
        return std::nullopt;
    boost::json::error_code error;
    const auto number = value->to_number<std::int64_t>(error);
    if (error)
        throw SandboxFailure::badField(name(key), "整数");
    return number;
}

std::optional<bool> JsonFields::optionalBool(std::string_view key) const {
    const auto *value = find(key);
    if (!value)
        return std::nullopt;
    if (!value->is_bool())
        throw SandboxFailure::badField(name(key), "布尔值");
    return value->as_bool();
}

const boost::json::array &JsonFields::list(std::string_view key) const {
    const auto *value = find(key);
    if (!value || !value->is_array())
        throw SandboxFailure::badField(name(key), "数组");
    return value->as_array();
}

const boost::json::object &JsonFields::child(std::string_view key) const {
    const auto *value = find(key);
    if (!value || !value->is_object())
        throw SandboxFailure::badField(name(key), "对象");
    return value->as_object();
}

} // namespace lmp::sandbox
