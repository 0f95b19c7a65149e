#pragma once

#include "core/JsonCodec.h"
#include "core/JsonFailure.h"
#include "core/JsonRest.h"
#include "core/JsonText.h"
#include "core/JsonTypeName.h"

#include <boost/describe.hpp>
#include <boost/json/value.hpp>
#include <boost/mp11.hpp>

#include <cmath>
#include <limits>

namespace lmp::detail {

/// One step of the way to the value being read; only spelt out when something is wrong there.
struct JsonPlace {
    const JsonPlace *outer = nullptr;
    std::string_view key;
    qsizetype index = -1;

    QString text() const;
};

/// Turns parsed JSON into described records. Every function returns false after filling `failure`, and is meant for
/// Json::decode alone.
class JsonReader {
public:
    JsonFailure failure;

    template <class T>
    bool read(const boost::json::value &from, T &to, const JsonPlace &at) {
        if constexpr (IsOptional<T>::value) {
            if (from.is_null()) {
                to.reset();
                return true;
            }
            return read(from, to.emplace(), at);
        } else if constexpr (std::is_same_v<T, boost::json::value>) {
            // A copy into ordinary memory: the parsed text's own is gone when decoding ends.
            to = boost::json::value(from, boost::json::storage_ptr());
            return true;
        } else if constexpr (HasJsonCodec<T>) {
            return JsonCodec<T>::read(from, to) || mismatch<T>(at);
        } else {
            if (from.is_null()) [[unlikely]]
                return fail(JsonFailure::Kind::NullValue, at, jsonTypeName<T>());
            return readValue(from, to, at);
        }
    }

private:
    template <class T>
    bool readValue(const boost::json::value &from, T &to, const JsonPlace &at) {
        if constexpr (std::is_same_v<T, bool>) {
            const bool *found = from.if_bool();
            return found ? (to = *found, true) : mismatch<T>(at);
        } else if constexpr (std::is_integral_v<T>) {
            return readInteger(from, to, at);
        } else if constexpr (std::is_floating_point_v<T>) {
            if (!from.is_number())
                return mismatch<T>(at);
            to = from.to_number<T>();
            return std::isfinite(to) || fail(JsonFailure::Kind::Corrupted, at, jsonTypeName<T>());
        } else if constexpr (std::is_same_v<T, QString>) {
            const auto *found = from.if_string();
            return found ? (to = jsonText(*found), true) : mismatch<T>(at);
        } else if constexpr (IsList<T>::value) {
            return readList(from, to, at);
        } else if constexpr (IsMap<T>::value) {
            return readMap(from, to, at);
        } else if constexpr (boost::describe::has_describe_enumerators<T>::value) {
            return readEnum(from, to, at);
        } else {
            static_assert(boost::describe::has_describe_members<T>::value, "describe the record to read it");
            return readRecord(from, to, at);
        }
    }

    template <class T>
    bool readInteger(const boost::json::value &from, T &to, const JsonPlace &at) {
        if (const auto *whole = from.if_int64(); whole && std::in_range<T>(*whole))
            return to = T(*whole), true;
        if (const auto *whole = from.if_uint64(); whole && std::in_range<T>(*whole))
            return to = T(*whole), true;
        if (const auto *real = from.if_double()) {
            // 3.0 and 1e3 are whole numbers in JSON; 2^63 as a double is the first that no longer fits.
            if (std::trunc(*real) == *real && std::abs(*real) < 9223372036854775808.0 &&
                std::in_range<T>(qint64(*real)))
                return to = T(*real), true;
        }
        return from.is_number() ? fail(JsonFailure::Kind::Corrupted, at, jsonTypeName<T>()) : mismatch<T>(at);
    }

    template <class L>
    bool readList(const boost::json::value &from, L &to, const JsonPlace &at) {
        const auto *array = from.if_array();
        if (!array)
            return mismatch<L>(at);
        to.clear();
        to.reserve(array->size());
        qsizetype index = 0;
        for (const auto &element : *array) {
            if (!read(element, to.emplace_back(), JsonPlace{&at, {}, index++}))
                return false;
        }
        return true;
    }

    template <class T>
    bool readMap(const boost::json::value &from, QMap<QString, T> &to, const JsonPlace &at) {
        const auto *object = from.if_object();
        if (!object)
            return mismatch<QMap<QString, T>>(at);
        to.clear();
        for (const auto &[key, value] : *object) {
            const std::string_view name(key.data(), key.size());
            if (!read(value, to[jsonText(name)], JsonPlace{&at, name, -1}))
                return false;
        }
        return true;
    }

    template <class E>
    bool readEnum(const boost::json::value &from, E &to, const JsonPlace &at) {
        const auto *text = from.if_string();
        if (!text)
            return fail(JsonFailure::Kind::TypeMismatch, at, QStringLiteral("String"));
        bool found = false;
        boost::mp11::mp_for_each<boost::describe::describe_enumerators<E>>([&](auto D) {
            if (!found && *text == D.name) {
                to = D.value;
                found = true;
            }
        });
        return found || fail(JsonFailure::Kind::Corrupted, at, jsonTypeName<E>());
    }

    template <class R>
    bool readRecord(const boost::json::value &from, R &to, const JsonPlace &at) {
        const auto *object = from.if_object();
        if (!object)
            return mismatch<R>(at);
        bool good = true;
        std::size_t known = 0;
        // Services write keys in one order, mostly ours: the next key is tried before the object is searched.
        auto next = object->begin();
        boost::mp11::mp_for_each<boost::describe::describe_members<R, boost::describe::mod_public>>([&](auto D) {
            if (!good)
                return;
            constexpr std::string_view name(D.name);
            using Member = std::remove_cvref_t<decltype(to.*D.pointer)>;
            if constexpr (std::is_same_v<Member, JsonRest>) {
                if (known < object->size())
                    (to.*D.pointer).keys = restOf<R>(*object);
            } else {
                auto found = next != object->end() && next->key() == name ? next : object->find(name);
                if (found == object->end()) {
                    if constexpr (!IsOptional<Member>::value)
                        good = missing(at, name);
                    return;
                }
                ++known;
                good = read(found->value(), to.*D.pointer, JsonPlace{&at, name, -1});
                next = found + 1;
            }
        });
        return good;
    }

    /// What is left of an object beside the fields of `R`, in ordinary memory.
    template <class R>
    static std::shared_ptr<const boost::json::object> restOf(const boost::json::object &object) {
        auto rest = std::make_shared<boost::json::object>();
        for (const auto &[key, value] : object) {
            bool field = false;
            boost::mp11::mp_for_each<boost::describe::describe_members<R, boost::describe::mod_public>>([&](auto D) {
                // The member that takes the rest is no field: a key of its name is one more that is not known.
                using Member = std::remove_cvref_t<decltype(std::declval<R &>().*D.pointer)>;
                field =
                    field || (!std::is_same_v<Member, JsonRest> && std::string_view(key.data(), key.size()) == D.name);
            });
            if (!field)
                rest->emplace(key, boost::json::value(value, boost::json::storage_ptr()));
        }
        return rest;
    }

    template <class T>
    bool mismatch(const JsonPlace &at) {
        return fail(JsonFailure::Kind::TypeMismatch, at, jsonTypeName<T>());
    }
    bool missing(const JsonPlace &at, std::string_view key);
    bool fail(JsonFailure::Kind kind, const JsonPlace &at, const QString &expected);
};

} // namespace lmp::detail
