#pragma once

#include <QStringList>
#include <QTemporaryDir>

namespace lmp {

/// A command-line tool that plays its side of a recording (see replay_agent.py), as a program on disk.
class FakeAgent {
public:
    /// @param recording its steps, each a line of JSON
    explicit FakeAgent(const QByteArray &recording);
    /// A recording that is kept with the tests: "claude/allow".
    static QByteArray recording(const QString &name);

    QString program() const { return m_folder.filePath(QStringLiteral("agent")); }
    QString folder() const { return m_folder.path(); }
    /// What it was given: its arguments as JSON, then the lines it has read.
    QStringList received() const;

private:
    QTemporaryDir m_folder;
};

} // namespace lmp
