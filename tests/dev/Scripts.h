#pragma once

#include "dev/DevProcessRegistry.h"
#include "support/Await.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>

namespace lmp {

/// A script that starts children of all kinds and says "ready" when they are there; see the file.
inline const QString family = QStringLiteral(LMP_TEST_DATA "/dev/family.py");

/// Real little programs on disk, in a folder that goes with it, and children of a registry of their own.
class Scripts {
public:
    QString folder() const { return m_folder.path(); }
    QString path(const QString &name) const { return m_folder.filePath(name); }

    /// Writes an executable file. @param text with its interpreter line
    QString write(const QString &name, const QByteArray &text) const {
        QFile file(path(name));
        file.open(QIODevice::WriteOnly);
        file.write(text);
        file.close();
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path(name);
    }
    QByteArray read(const QString &name) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::expected<std::shared_ptr<DevProcess>, DevProcess::Failure> tryStart(const QByteArray &text,
                                                                             QStringList arguments = {}) {
        const QString name = QStringLiteral("script%1").arg(++m_count);
        return DevProcess::launch(
            {.program = write(name, text), .arguments = std::move(arguments), .directory = folder()}, registry);
    }
    /// The family, which is known to start.
    std::shared_ptr<DevProcess> startFamily(bool deaf) {
        return DevProcess::launch({.program = family,
                                   .arguments = deaf ? QStringList{QStringLiteral("deaf")} : QStringList(),
                                   .directory = folder()},
                                  registry)
            .value();
    }
    /// A child that is known to start.
    std::shared_ptr<DevProcess> start(const QByteArray &text, QStringList arguments = {}) {
        return tryStart(text, std::move(arguments)).value();
    }

    DevProcessRegistry registry;

private:
    QTemporaryDir m_folder;
    int m_count = 0;
};

/// All lines of a child until its output ends.
inline QCoro::Task<QByteArrayList> allLines(std::shared_ptr<DevProcess> process) {
    QByteArrayList all;
    auto lines = process->lines();
    while (const auto line = co_await lines.next())
        all.append(line->toByteArray());
    co_return std::as_const(all);
}

/// The next line, or "(end)".
inline QCoro::Task<QByteArray> nextLine(DevLines *lines) {
    const auto line = co_await lines->next();
    co_return line ? line->toByteArray() : QByteArray("(end)");
}

/// Whether a process runs; one that is dead and merely not yet reaped does not.
inline bool runs(qint64 pid) {
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return ::kill(static_cast<pid_t>(pid), 0) == 0 && !QFile::exists(QStringLiteral("/proc/self/stat"));
    const QByteArray text = stat.readAll();
    return !text.isEmpty() && text.mid(text.lastIndexOf(')') + 2, 1) != "Z";
}

/// The numbers of a family, out of the line that says it is ready.
inline QList<qint64> familyIn(const QByteArray &line) {
    QList<qint64> pids;
    const auto words = line.trimmed().split(' ');
    if (words.first() == "ready")
        std::ranges::transform(words.sliced(1), std::back_inserter(pids),
                               [](const auto &word) { return word.toLongLong(); });
    return pids;
}

inline qsizetype running(const QList<qint64> &pids) {
    return std::ranges::count_if(pids, [](qint64 pid) { return runs(pid); });
}

} // namespace lmp
