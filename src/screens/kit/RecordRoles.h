#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVariant>
#include <boost/describe.hpp>
#include <boost/mp11.hpp>
#include <concepts>
#include <optional>
#include <type_traits>
#include <vector>

namespace lmp {

/// The roles of a described record: one for each field that QML can hold, in the order of the description, bases first.
///
/// Text, truth, numbers, addresses and times are themselves; a described enumerator is its name; an optional without a
/// value is an invalid QVariant (undefined in QML); a vector of texts is a list. Any other field is no role. Pure.
template <class Record>
class RecordRoles {
public:
    [[nodiscard]] static QHash<int, QByteArray> names() {
        QHash<int, QByteArray> names;
        each([&](auto field, int role) { names.insert(role, field.name); });
        return names;
    }

    [[nodiscard]] static QVariant value(const Record &record, int wanted) {
        QVariant value;
        each([&](auto field, int role) {
            if (role == wanted)
                value = toVariant(record.*field.pointer);
        });
        return value;
    }

    /// The roles in which `now` says something else than `before`.
    [[nodiscard]] static QList<int> differing(const Record &before, const Record &now) {
        QList<int> roles;
        each([&](auto field, int role) {
            if (!(before.*field.pointer == now.*field.pointer))
                roles.append(role);
        });
        return roles;
    }

private:
    using Fields =
        boost::describe::describe_members<Record, boost::describe::mod_public | boost::describe::mod_inherited>;

    template <class T>
    static constexpr bool isOptional = false;
    template <class T>
    static constexpr bool isOptional<std::optional<T>> = true;

    template <class T>
    static constexpr bool isPlain =
        std::same_as<T, QString> || std::is_arithmetic_v<T> || std::same_as<T, QUrl> || std::same_as<T, QDateTime> ||
        std::same_as<T, QStringList> || std::same_as<T, std::vector<QString>> ||
        boost::describe::has_describe_enumerators<T>::value;

    template <class T>
    static constexpr bool holds = isPlain<T>;
    template <class T>
    static constexpr bool holds<std::optional<T>> = isPlain<T>;

    template <class T>
    static QVariant toVariant(const T &value) {
        if constexpr (isOptional<T>)
            return value ? toVariant(*value) : QVariant();
        else if constexpr (std::same_as<T, std::vector<QString>>)
            return QStringList(value.begin(), value.end());
        else if constexpr (boost::describe::has_describe_enumerators<T>::value)
            return QString::fromLatin1(boost::describe::enum_to_string(value, ""));
        else
            return QVariant::fromValue(value);
    }

    /// Calls `visit(field, role)` for every field that is a role.
    template <class Visit>
    static void each(Visit visit) {
        int role = Qt::UserRole;
        boost::mp11::mp_for_each<Fields>([&](auto field) {
            using Field = std::remove_cvref_t<decltype(std::declval<const Record &>().*field.pointer)>;
            if constexpr (holds<Field>)
                visit(field, ++role);
        });
    }
};

} // namespace lmp
