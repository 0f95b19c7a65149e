#pragma once

#include "dev/DevEngineKind.h"
#include "dev/DevEvent.h"
#include "terminal/Console.h"

#include <QCryptographicHash>

#include <map>

namespace lmp {

/// Writes down what a coding agent does: its words alone on standard output and the rest on standard error, or one
/// event a line.
///
/// Owned by the command. UI thread.
class DevOutput {
public:
    DevOutput(Console &console, DevEngineKind engine, bool jsonl);

    void event(const DevEvent &event);
    /// Something that is no event: what a command of the user's came to.
    void error(const QString &reason);
    /// For people only; programs see it in the events.
    void note(const QString &text);
    /// A permission question, when it is its turn to be asked; programs have it as an event.
    /// @param forChoosing somebody may answer it
    void question(const DevPermissionRequest &request, bool forChoosing);

    /// The agent's name.
    static QString name(DevEngineKind engine);

private:
    void show(const dev_event::SessionStarted &started);
    void show(const dev_event::AssistantDelta &delta);
    void show(const dev_event::AssistantText &message);
    void show(const dev_event::ToolCall &call);
    void show(const dev_event::ToolResult &result);
    void show(const dev_event::FileChanged &changed);
    void show(const dev_event::CommandOutput &output);
    void show(const DevPermissionRequest &) {}
    void show(const dev_event::TurnCompleted &completed);
    void show(const dev_event::Failed &failed);
    void show(const dev_event::Notice &notice);
    void show(const dev_event::Interrupted &interrupted);
    void endReply();

    /// Of a command that runs, what it printed: enough to know it again, and the line that is not complete.
    struct Printed {
        QCryptographicHash hash{QCryptographicHash::Sha1};
        qsizetype length = 0;
        QString partial = {};
        void add(const QString &chunk);
        bool begins(const QString &output) const;
    };

    Console &m_console;
    DevEngineKind m_engine;
    bool m_jsonl;
    QString m_streamed;             ///< of the message that is being said
    bool m_endsWithLineFeed = true; ///< of what went to standard output
    std::map<QString, Printed> m_printed;
};

} // namespace lmp
