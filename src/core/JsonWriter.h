#pragma once

#include "core/JsonCodec.h"
#include "core/JsonRest.h"
#include "core/JsonTypeName.h"

#include <QByteArray>

#include <boost/describe.hpp>
#include <boost/json/value.hpp>
#include <boost/mp11.hpp>

#include <charconv>

namespace lmp::detail {

/// Appends records as JSON text. Meant for Json::encode alone; throws JsonEncodingError for what JSON cannot hold.
class JsonWriter {
public:
    QByteArray text;

    template <class T>
    void write(const T &value) {
        if constexpr (IsOptional<T>::value) {
            if (value)
                write(*value);
            else
                text += "null";
        } else if constexpr (std::is_same_v<T, bool>) {
            text += value ? "true" : "false";
        } else if constexpr (std::is_integral_v<T>) {
            writeInteger(value);
        } else if constexpr (std::is_floating_point_v<T>) {
            writeReal(double(value));
        } else if constexpr (std::is_same_v<T, QString>) {
            writeString(value);
        } else if constexpr (std::is_same_v<T, boost::json::value>) {
            writeValue(value);
        } else if constexpr (HasJsonCodec<T>) {
            JsonCodec<T>::write(value, *this);
        } else if constexpr (IsList<T>::value) {
            writeList(value);
        } else if constexpr (IsMap<T>::value) {
            writeMap(value);
        } else if constexpr (boost::describe::has_describe_enumerators<T>::value) {
            writeEnum(value);
        } else {
            static_assert(boost::describe::has_describe_members<T>::value, "describe the record to write it");
            writeRecord(value);
        }
    }

private:
    template <class L>
    void writeList(const L &list) {
        text += '[';
        for (bool first = true; const auto &element : list) {
            if (!std::exchange(first, false))
                text += ',';
            write(element);
        }
        text += ']';
    }

    template <class T>
    void writeMap(const QMap<QString, T> &map) {
        text += '{';
        for (bool first = true; const auto &[key, value] : map.asKeyValueRange()) {
            if (!std::exchange(first, false))
                text += ',';
            writeString(key);
            text += ':';
            write(value);
        }
        text += '}';
    }

    template <class E>
    void writeEnum(E value) {
        boost::mp11::mp_for_each<boost::describe::describe_enumerators<E>>([&](auto D) {
            if (D.value == value)
                (text += '"').append(D.name) += '"';
        });
    }

    template <class R>
    void writeRecord(const R &record) {
        text += '{';
        bool first = true;
        boost::mp11::mp_for_each<boost::describe::describe_members<R, boost::describe::mod_public>>([&](auto D) {
            const auto &member = record.*D.pointer;
            if constexpr (std::is_same_v<std::remove_cvref_t<decltype(member)>, JsonRest>) {
                writeRest(member, first);
            } else {
                if constexpr (IsOptional<std::remove_cvref_t<decltype(member)>>::value) {
                    if (!member)
                        return;
                }
                text += std::exchange(first, false) ? "\"" : ",\"";
                text.append(D.name) += "\":";
                write(member);
            }
        });
        text += '}';
    }

    void writeRest(const JsonRest &rest, bool &first);
    template <class T>
    void writeInteger(T value) {
        char digits[24];
        const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
        text.append(digits, end - digits);
    }

    /// @param marked with a fraction even where it is zero, so that a value that came as a real number stays one
    void writeReal(double value, bool marked = false);
    void writeString(const QString &value);
    void writeEscaped(QByteArrayView utf8);
    void writeValue(const boost::json::value &value);
    void writeMembers(const boost::json::object &object, bool &first);
};

} // namespace lmp::detail
