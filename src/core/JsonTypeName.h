#pragma once

#include <QList>
#include <QMap>
#include <QString>

#include <optional>
#include <string_view>
#include <type_traits>
#include <vector>

namespace lmp::detail {

/// "Conversation" of lmp::ConversationDTO and the like: the last component of the compiler's own spelling.
template <class T>
constexpr std::string_view plainTypeName() {
    constexpr std::string_view text = __PRETTY_FUNCTION__;
    constexpr std::string_view mark = "T = ";
    constexpr auto start = text.find(mark) + mark.size();
    constexpr auto full = text.substr(start, text.rfind(']') - start);
    constexpr auto colons = full.rfind("::");
    return colons == std::string_view::npos ? full : full.substr(colons + 2);
}

template <class T>
struct IsList : std::false_type {};
template <class T>
struct IsList<std::vector<T>> : std::true_type {};
template <class T>
struct IsList<QList<T>> : std::true_type {};

template <class T>
struct IsMap : std::false_type {};
template <class T>
struct IsMap<QMap<QString, T>> : std::true_type {};

template <class T>
struct IsOptional : std::false_type {};
template <class T>
struct IsOptional<std::optional<T>> : std::true_type {};

/// The name a person reads in a decoding sentence.
template <class T>
QString jsonTypeName() {
    if constexpr (std::is_same_v<T, bool>)
        return QStringLiteral("Bool");
    else if constexpr (std::is_integral_v<T>)
        return QStringLiteral("Int");
    else if constexpr (std::is_floating_point_v<T>)
        return QStringLiteral("Double");
    else if constexpr (std::is_same_v<T, QString>)
        return QStringLiteral("String");
    else if constexpr (IsList<T>::value)
        return QStringLiteral("Array");
    else if constexpr (IsMap<T>::value)
        return QStringLiteral("Dictionary");
    else
        return QString::fromLatin1(plainTypeName<T>().data(), qsizetype(plainTypeName<T>().size()));
}

} // namespace lmp::detail
