#pragma once

#include <QStringList>

#include <optional>

namespace lmp {

/// Where programs are found, and what a child sees of the program's environment.
///
/// Free of state but for the login shell's PATH, which LoginShell asks for once. Any thread but the UI thread, unless
/// that PATH is known already (`LoginShell::isKnown`): the first call may take up to three seconds.
class DevExecutable {
public:
    /// @return the absolute path of the program called `name`, or none
    static std::optional<QString> find(const QString &name);
    /// The same with everything given. @param applicationPath the program's own PATH
    static std::optional<QString> find(const QString &name, const QString &home, const QString &applicationPath);

    /// The PATH of a child: `path` in its order, then each well-known directory that is not in it.
    static QString searchPath(const QString &path);
    static QString searchPath(const QString &path, const QString &home);

    /// As it is, NAME=value each; bytes, since a value need not be text.
    static QList<QByteArray> ownEnvironment();
    /// The program's environment without its own settings and credentials, with a child's PATH.
    static QList<QByteArray> childEnvironment();
    static QList<QByteArray> childEnvironment(const QList<QByteArray> &environment, const QString &applicationPath,
                                              const QString &home);
};

} // namespace lmp
