#pragma once

#include "dev/DevEvent.h"
#include "dev/codex/CodexMessage.h"

#include <QHash>
#include <QQueue>
#include <QSet>
#include <QStringList>

#include <vector>

namespace lmp {

/// Follows the items of a thread and says what they are for whoever watches: every call of a tool gets its result,
/// once, and every message is complete in the end, whatever Codex leaves open.
///
/// Owned by the engine, on its executor; knows no I/O. Items may end after their turn, or not at all.
class CodexItems {
public:
    using Events = std::vector<DevEvent>;

    void started(const CodexItem &item, Events &out);
    void completed(const CodexItem &item, Events &out);
    void messageDelta(const codex_message::MessageDelta &delta, Events &out);
    void outputDelta(const codex_message::OutputDelta &delta, Events &out);
    /// The turn was stopped or the process is gone: what is open will not end by itself. What comes of it later all the
    /// same is left out.
    void closeAll(Events &out);
    /// The turn has ended by itself: commands may go on, messages do not.
    void closeMessages(Events &out);

    /// The changes that the item with this id is about, as it was announced; questions do not repeat them.
    QList<CodexFileChange> changes(const QString &itemId) const { return m_changes.value(itemId); }
    /// The command of an item, without the shell around it; empty when the item is not known.
    QString command(const QString &itemId) const { return m_commandByItem.value(itemId); }

    /// Lines that a change adds and removes.
    struct Lines {
        qint64 added = 0;
        qint64 removed = 0;
    };
    static Lines count(const CodexFileChange &change);
    /// The files of a change on one line.
    static QString summary(const QList<CodexFileChange> &changes);

private:
    void open(const CodexItem &item, dev_event::ToolCall call, Events &out);
    void close(const QString &id, QString output, bool isError, Events &out);
    void startedCommand(const CodexItem &item, Events &out);
    void startedTool(const CodexItem &item, Events &out);
    void completedCommand(const CodexItem &item, Events &out);
    void completedChange(const CodexItem &item, Events &out);
    void completedTool(const CodexItem &item, Events &out);

    /// Of one message, in characters: what goes on for ever is not kept for ever.
    static constexpr qsizetype maxStreamed = 1024 * 1024;
    static constexpr qsizetype maxClosed = 4096;

    void noteClosed(const QString &id);

    QHash<QString, QString> m_agentTextByItem; ///< streamed so far, of messages that are not complete
    QStringList m_messages;                    ///< their ids, in order
    QHash<QString, QString> m_commandByItem;
    QHash<QString, QList<CodexFileChange>> m_changes;
    QStringList m_open;     ///< calls without a result, in order
    QSet<QString> m_closed; ///< items that were ended here, the latest of them
    QQueue<QString> m_closedInOrder;
};

} // namespace lmp
