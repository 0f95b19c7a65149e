#pragma once

#include <QString>
#include <QStringView>

#include <optional>

namespace lmp {

/// Names one object of the service by kind and id, wherever it is mentioned: "mission:m_12", or for an approval, which
/// is a step of a mission, "approval:m_12/s_3".
///
/// A value; any thread. Ids come from outside and go into requests, so only letters, digits and "-_.~:@=+" are ids.
struct ObjectReference {
    QString kind; ///< "mission", "approval", "receipt", ..., or one that this client has never heard of
    QString id;
    QString step = {}; ///< of an approval alone
    bool operator==(const ObjectReference &) const = default;

    /// @return none for what is no reference
    static std::optional<ObjectReference> parse(QStringView text);
    /// Out of its pieces; `step` is empty but for an approval.
    static std::optional<ObjectReference> of(const QString &kind, const QString &id, const QString &step = {});

    /// The text that `parse` reads.
    QString canonical() const;

    /// Whether `text` may be the id of anything.
    static bool isId(QStringView text);
};

} // namespace lmp
