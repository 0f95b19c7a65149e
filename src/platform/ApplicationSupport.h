#pragma once

#include <QString>

#include <optional>

namespace lmp {

/// Where this profile's files live: "Lumenpair" in the platform's application-support folder
/// (~/Library/Application Support on macOS, $XDG_DATA_HOME on Linux), with a folder of its own for each named profile.
///
/// A value; any thread.
class ApplicationSupport {
public:
    /// @param profile empty for the person's own, else a name of letters, digits, '-' and '_'.
    explicit ApplicationSupport(QString profile = {});

    /// A folder given outright, for tests.
    static ApplicationSupport at(QString root);

    const QString &root() const { return m_root; }
    const QString &profile() const { return m_profile; }

    /// The folder `relative` below the root, made (0700), for good, when it is missing; none when it cannot be made.
    std::optional<QString> folder(const QString &relative) const;

    /// Whether `name` may name a profile: it becomes part of a path.
    static bool isProfileName(const QString &name);

private:
    QString m_profile;
    QString m_root;
};

} // namespace lmp
