#include "dev/DevTools.h"

#include <QHash>

namespace lmp {

namespace {

using Kind = DevTools::Kind;

const QHash<QString, Kind> &kinds() {
    static const QHash<QString, Kind> table = {
        {QStringLiteral("Bash"), Kind::bash},
        {QStringLiteral("BashOutput"), Kind::bash},
        {QStringLiteral("KillShell"), Kind::bash},
        {QStringLiteral("KillBash"), Kind::bash},
        {QStringLiteral("bash"), Kind::bash},
        {QStringLiteral("Edit"), Kind::edit_file},
        {QStringLiteral("Write"), Kind::write_file},
        {QStringLiteral("MultiEdit"), Kind::edit_file},
        {QStringLiteral("NotebookEdit"), Kind::edit_file},
        {QStringLiteral("edit_file"), Kind::edit_file},
        {QStringLiteral("write_file"), Kind::write_file},
        {QStringLiteral("apply_patch"), Kind::edit_file},
        {QStringLiteral("Read"), Kind::read_file},
        {QStringLiteral("Glob"), Kind::glob},
        {QStringLiteral("Grep"), Kind::grep},
        {QStringLiteral("read_file"), Kind::read_file},
        {QStringLiteral("list_files"), Kind::list_files},
        {QStringLiteral("grep"), Kind::grep},
        {QStringLiteral("glob"), Kind::glob},
        {QStringLiteral("TodoWrite"), Kind::read_file},
    };
    return table;
}

} // namespace

DevTools::Kind DevTools::kindOf(const QString &tool) {
    return kinds().value(tool, Kind::write_file);
}

QString DevTools::name(Kind kind) {
    switch (kind) {
    case Kind::list_files:
        return QStringLiteral("list_files");
    case Kind::read_file:
        return QStringLiteral("read_file");
    case Kind::grep:
        return QStringLiteral("grep");
    case Kind::glob:
        return QStringLiteral("glob");
    case Kind::edit_file:
        return QStringLiteral("edit_file");
    case Kind::write_file:
        return QStringLiteral("write_file");
    case Kind::bash:
        break;
    }
    return QStringLiteral("bash");
}

} // namespace lmp
