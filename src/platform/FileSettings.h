#pragma once

#include "platform/Settings.h"

#include <QHash>

#include <functional>

namespace lmp {

/// The user defaults of a platform that has none: one file of the profile's folder, replaced whole at each change.
///
/// Read at the first use and kept in memory; a change reads again first, so that two processes keep each other's keys.
/// A file that cannot be understood is moved aside and kept; one that cannot be read is left as it is, and nothing is
/// stored then.
class FileSettings : public Settings {
public:
    /// @param path the file; its folder must exist.
    explicit FileSettings(QString path);

    std::optional<QByteArray> value(const QString &key) const override;
    bool setValue(const QString &key, const QByteArray &value) override;
    bool remove(const QString &key) override;

private:
    using Values = QHash<QString, QByteArray>;
    std::optional<Values> load() const;
    bool change(const std::function<void(Values &)> &edit);

    QString m_path;
    mutable bool m_loaded = false;
    mutable Values m_values;
};

} // namespace lmp
