#pragma once

#include <QList>
#include <QString>

namespace lmp {

/// A region that the crisis page can be asked for.
///
/// A value; any thread. Codes are ISO 3166-1 alpha-2.
struct CrisisRegion {
    QString code;
    QString label;
    bool operator==(const CrisisRegion &) const = default;

    /// In the order in which they are offered; the first is the default.
    static const QList<CrisisRegion> &all();
    /// Mainland China: where most of the people are, and what the service assumes too.
    static const CrisisRegion &fallback() { return all().front(); }
    /// The label of a code in any case, or the code itself when it is not in the list.
    static QString labelOf(const QString &code);
};

} // namespace lmp
