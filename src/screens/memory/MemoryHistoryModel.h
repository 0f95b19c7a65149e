#pragma once

#include "identity/MemoryHistoryResp.h"
#include "screens/kit/RecordListModel.h"
#include "screens/memory/MemoryServices.h"

#include <QtQml/qqmlregistration.h>

namespace lmp {

/// How one memory came to its wording, and the way back to the one before.
///
/// Part of the ledger's model; UI thread. A change that may have happened is never sent again.
class MemoryHistoryModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of a MemoryLedgerModel")
    Q_PROPERTY(State state READ state NOTIFY changed)
    Q_PROPERTY(QString current READ current NOTIFY changed)
    /// The newest first.
    Q_PROPERTY(QAbstractItemModel *entries READ entries CONSTANT)
    Q_PROPERTY(int count READ count NOTIFY changed)
    Q_PROPERTY(bool canRevert READ canRevert NOTIFY changed)
    /// What is going on, or what became of it.
    Q_PROPERTY(QString message READ message NOTIFY changed)
    Q_PROPERTY(bool failed READ failed NOTIFY changed)
public:
    enum class State { Closed, Loading, Unreadable, Loaded, Reverting };
    Q_ENUM(State)
    /// A step as it is shown.
    struct Entry {
        QString previous;
        QString next;
        QString detail; ///< from where, and when
        bool operator==(const Entry &) const = default;
    };

    explicit MemoryHistoryModel(MemoryServices services, QObject *parent = nullptr);

    State state() const { return m_state; }
    const QString &current() const { return m_history.current; }
    QAbstractItemModel *entries() { return &m_entries; }
    int count() const { return m_entries.rowCount(); }
    bool canRevert() const;
    const QString &message() const { return m_message; }
    bool failed() const { return m_failed; }

    void open(const QString &memoryId);
    Q_INVOKABLE void reload();
    Q_INVOKABLE void revert();
    Q_INVOKABLE void close() { drop(); }
    /// Lets go of everything.
    void drop(const QString &why = {});

Q_SIGNALS:
    void changed();
    /// The service has another wording.
    void reworded(const QString &memoryId, const QString &content);
    /// What became of a change whose sheet was closed meanwhile.
    void settledUnseen(const QString &text, bool failed);

private:
    /// @param told stays when the history is there
    QCoro::Task<> load(QString told);
    QCoro::Task<> revertNow();
    void tellUnseen(const QString &memoryId, const MemoryRevertOutcome &outcome);
    bool isStill(quint64 generation, const QString &owner);
    void settle(State state, const QString &message, bool failed);

    MemoryServices m_services;
    quint64 m_generation = 0; ///< counts what was opened
    QString m_memoryId;
    MemoryHistoryResp m_history;
    bool m_stale = false; ///< the revision is not, or may not be, the newest
    State m_state = State::Closed;
    QString m_message;
    bool m_failed = false;
    RecordListModel<Entry> m_entries;
};
BOOST_DESCRIBE_STRUCT(MemoryHistoryModel::Entry, (), (previous, next, detail))

} // namespace lmp
