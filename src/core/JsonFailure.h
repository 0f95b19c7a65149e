#pragma once

#include <QString>

namespace lmp {

/// Why a JSON text did not become a record, and where.
///
/// A value. `path` is written ".items[0].title" and is empty at the top. For a missing key it is the place of the
/// object that lacks it; for everything else the place of the value itself.
struct JsonFailure {
    enum class Kind { MissingKey, NullValue, TypeMismatch, Corrupted, Other };
    Kind kind = Kind::Other;
    QString path;
    QString key;      ///< the key that is missing
    QString expected; ///< plain name of the type that was wanted

    /// The sentence for people.
    /// @param type plain name of the record that was being decoded
    QString describe(const QString &type) const;
};

} // namespace lmp
