#include "dev/DevExecutable.h"

#include "dev/LoginShell.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

extern char **environ;

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// Where tools are installed, the most personal place first.
QStringList wellKnownDirectories(const QString &home) {
    return {home + u"/.local/bin"_s,    u"/opt/homebrew/bin"_s, u"/usr/local/bin"_s,
            home + u"/.claude/local"_s, u"/usr/bin"_s,          u"/bin"_s};
}

/// What configures this program and what it signs in with.
bool isOwn(const QByteArray &entry) {
    return entry.startsWith("LMP_") || entry.startsWith("TOKEN_RELAY") || entry.startsWith("ARK_");
}

bool isProgram(const QString &path) {
    const QFileInfo file(path);
    return file.isFile() && file.isExecutable();
}

std::optional<QString> findIn(const QStringList &directories, const QString &name) {
    for (const QString &directory : directories) {
        const QString path = directory + u'/' + name;
        // A relative entry would mean another program in each working directory.
        if (QDir::isAbsolutePath(path) && isProgram(path))
            return path;
    }
    return std::nullopt;
}

} // namespace

std::optional<QString> DevExecutable::find(const QString &name) {
    // The shell is asked only for what is not found without it.
    if (const auto found = find(name, QDir::homePath(), qEnvironmentVariable("PATH")))
        return found;
    return find(name, QDir::homePath(), LoginShell::applicationPath());
}

std::optional<QString> DevExecutable::find(const QString &name, const QString &home, const QString &applicationPath) {
    if (name.isEmpty())
        return std::nullopt;
    if (name.contains(u'/'))
        return QDir::isAbsolutePath(name) && isProgram(name) ? std::optional(name) : std::nullopt;
    if (const auto found = findIn(wellKnownDirectories(home), name))
        return found;
    return findIn(applicationPath.split(u':', Qt::SkipEmptyParts), name);
}

QString DevExecutable::searchPath(const QString &path) {
    return searchPath(path, QDir::homePath());
}

QString DevExecutable::searchPath(const QString &path, const QString &home) {
    QStringList directories = path.split(u':', Qt::SkipEmptyParts);
    for (const QString &directory : wellKnownDirectories(home)) {
        if (!directories.contains(directory))
            directories.append(directory);
    }
    return directories.join(u':');
}

QList<QByteArray> DevExecutable::ownEnvironment() {
    QList<QByteArray> entries;
    for (char **entry = environ; entry && *entry; ++entry)
        entries.append(*entry);
    return entries;
}

QList<QByteArray> DevExecutable::childEnvironment() {
    return childEnvironment(ownEnvironment(), LoginShell::applicationPath(), QDir::homePath());
}

QList<QByteArray> DevExecutable::childEnvironment(const QList<QByteArray> &environment, const QString &applicationPath,
                                                  const QString &home) {
    QList<QByteArray> entries;
    for (const QByteArray &entry : environment) {
        if (!isOwn(entry) && !entry.startsWith("PATH="))
            entries.append(entry);
    }
    entries.append("PATH=" + QFile::encodeName(searchPath(applicationPath, home)));
    return entries;
}

} // namespace lmp
