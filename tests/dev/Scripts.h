#pragma once

#include "dev/DevProcessRegistry.h"
#include "support/Await.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>

namespace lmp {

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

/// A script that starts a family and says "ready" when it is there: a child in the same group, one in a session of its
/// own, one below that whose parent has ended. All are deaf to a polite end when the first argument is "deaf". Each
/// writes its number into a file of the folder.
inline const QByteArray family = R"(#!/usr/bin/env python3
import os, signal, sys, time
def live(name):
    if sys.argv[1:] == ["deaf"]:
        signal.signal(signal.SIGTERM, signal.SIG_IGN)
        signal.signal(signal.SIGHUP, signal.SIG_IGN)
    with open(name + ".new", "w") as file: file.write(str(os.getpid()))
    os.rename(name + ".new", name)
def stay(name):
    live(name)
    while True: time.sleep(1000)
if os.fork() == 0: stay("group.pid")
if os.fork() == 0:
    os.setsid()
    if os.fork() == 0:
        if os.fork() == 0:
            os.setsid()
            stay("orphan.pid")
        os._exit(0)
    stay("session.pid")
live("main.pid")
while not all(os.path.exists(n + ".pid") for n in ("group", "session", "orphan")): time.sleep(0.005)
print("ready", flush=True)
for line in sys.stdin:
    if line == "leave\n": sys.exit(7)
    print(line, end="", flush=True)
while sys.argv[1:] == ["deaf"]: time.sleep(1000)
)";
inline const QStringList familyNames = {QStringLiteral("main.pid"), QStringLiteral("group.pid"),
                                        QStringLiteral("session.pid"), QStringLiteral("orphan.pid")};

/// The numbers of a family that is ready, in the order of `familyNames`.
inline QList<qint64> familyIn(const Scripts &scripts) {
    QList<qint64> pids;
    for (const QString &name : familyNames) {
        pids.append(scripts.read(name).toLongLong());
        QFile::remove(scripts.path(name));
    }
    return pids;
}

inline qsizetype running(const QList<qint64> &pids) {
    return std::ranges::count_if(pids, [](qint64 pid) { return runs(pid); });
}

} // namespace lmp
