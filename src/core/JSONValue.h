#pragma once

#include "core/JsonCodec.h"
#include "core/JsonText.h"

#include <QString>

#include <boost/json/value.hpp>

#include <cmath>
#include <type_traits>
#include <variant>

namespace lmp {

/// A property of a telemetry event: a string, a number, a truth value or null, as JSON the bare value.
///
/// A value; any thread. A number that JSON cannot hold becomes null, so that one bad measurement never spoils a batch.
class JSONValue {
public:
    JSONValue() = default;
    JSONValue(QString text)
        : m_value(std::move(text)) {}
    template <class T>
        requires std::is_arithmetic_v<T>
    JSONValue(T number) {
        if constexpr (std::is_same_v<T, bool>)
            m_value = number;
        else if (std::isfinite(double(number)))
            m_value = double(number);
    }
    bool operator==(const JSONValue &) const = default;

    bool isNull() const { return std::holds_alternative<std::monostate>(m_value); }
    const QString *string() const { return std::get_if<QString>(&m_value); }
    const double *number() const { return std::get_if<double>(&m_value); }
    const bool *boolean() const { return std::get_if<bool>(&m_value); }

private:
    std::variant<std::monostate, bool, double, QString> m_value;
};

template <>
struct JsonCodec<JSONValue> {
    static bool read(const boost::json::value &from, JSONValue &to) {
        if (const auto *text = from.if_string())
            to = detail::jsonText(*text);
        else if (const auto *truth = from.if_bool())
            to = *truth;
        else if (from.is_number())
            to = from.to_number<double>();
        else
            to = JSONValue();
        return !from.is_structured();
    }
    template <class Writer>
    static void write(const JSONValue &value, Writer &writer) {
        if (const auto *text = value.string())
            writer.write(*text);
        else if (const auto *number = value.number())
            writer.write(*number);
        else if (const auto *truth = value.boolean())
            writer.write(*truth);
        else
            writer.write(std::optional<bool>());
    }
};

} // namespace lmp
