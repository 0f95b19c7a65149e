#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace lmp {

/// Small values that outlive the process: the platform's user defaults.
///
/// Owned by the application, used on the UI thread. Values are bytes; whoever owns a key owns its encoding. Keys are
/// dotted lower case with a version suffix ("lmp.telemetry.queue.v1"). Nothing secret goes in here.
class Settings {
public:
    Settings() = default;
    Settings(const Settings &) = delete;
    Settings &operator=(const Settings &) = delete;
    virtual ~Settings() = default;

    /// The value under `key`, or none when it was never set or cannot be read.
    virtual std::optional<QByteArray> value(const QString &key) const = 0;

    /// Stores `value` durably.
    /// @return false when it could not be written (full disk, read-only folder); the old value is then still there.
    virtual bool setValue(const QString &key, const QByteArray &value) = 0;

    /// Forgets `key`. @return false when that could not be written.
    virtual bool remove(const QString &key) = 0;
};

} // namespace lmp
