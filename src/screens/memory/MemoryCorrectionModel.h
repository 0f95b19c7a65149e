#pragma once

#include "identity/MemoryOrigin.h"
#include "screens/kit/RecordListModel.h"
#include "screens/memory/MemoryServices.h"

#include <QSet>
#include <QtQml/qqmlregistration.h>

namespace lmp {

/// The correction of one memory: its wording now, where it comes from, what is typed instead, and what became of that.
///
/// Part of the ledger's model; UI thread. What is typed is kept (`MemoryInputs`) until it is saved or given up, with
/// the wording that it was typed upon: nothing is saved on top of one that the person has not seen. Nothing is sent
/// twice. A sheet that is closed while it saves is told of elsewhere.
class MemoryCorrectionModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of a MemoryLedgerModel")
    Q_PROPERTY(QString memoryId READ memoryId NOTIFY changed)
    Q_PROPERTY(State state READ state NOTIFY changed)
    /// The wording that the service has.
    Q_PROPERTY(QString current READ current NOTIFY changed)
    Q_PROPERTY(QAbstractItemModel *origins READ origins CONSTANT)
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    /// What was typed differs from the wording now.
    Q_PROPERTY(bool typed READ typed NOTIFY textChanged)
    Q_PROPERTY(bool canSave READ canSave NOTIFY textChanged)
    /// There is something to do, or to wait for.
    Q_PROPERTY(bool canAct READ canAct NOTIFY textChanged)
    /// Why it cannot be saved, or was not; empty when there is nothing to say.
    Q_PROPERTY(QString message READ message NOTIFY changed)
    /// Only opening it again shows what there is to go on from.
    Q_PROPERTY(bool mustReopen READ mustReopen NOTIFY changed)
    Q_PROPERTY(QString becomesFact READ becomesFact CONSTANT)
    Q_PROPERTY(QString savedTitle READ savedTitle NOTIFY changed)
    Q_PROPERTY(QString savedText READ savedText NOTIFY changed)
    Q_PROPERTY(bool canUndo READ canUndo NOTIFY changed)
public:
    enum class State { Closed, Loading, Unreadable, Ready, Saving, Saved, Undoing };
    Q_ENUM(State)

    explicit MemoryCorrectionModel(MemoryServices services, QObject *parent = nullptr);

    const QString &memoryId() const { return m_item.id; }
    State state() const { return m_state; }
    const QString &current() const { return m_history.current; }
    QAbstractItemModel *origins() { return &m_origins; }
    QString text() const { return m_text; }
    void setText(const QString &text);
    bool typed() const { return m_state != State::Closed && m_text != m_history.current; }
    bool canSave() const;
    bool canAct() const;
    const QString &message() const { return m_message; }
    bool mustReopen() const { return m_mustReopen; }
    static QString becomesFact();
    QString savedTitle() const;
    QString savedText() const;
    bool canUndo() const { return m_state == State::Saved && !m_revision.isEmpty() && !m_undone; }

    void open(const MemoryItemDTO &item);
    /// Reads the memory anew; what is typed stays.
    Q_INVOKABLE void reopen();
    Q_INVOKABLE void save();
    /// Goes back to the wording before the correction that was just saved.
    Q_INVOKABLE void undo();
    /// Gives up what was typed.
    Q_INVOKABLE void discard();
    /// What is typed stays, for the next time.
    Q_INVOKABLE void close();
    /// Lets go of everything, since somebody else is signed in.
    void drop(const QString &why = {});

    /// What the text of a memory's correction is kept under.
    static QString keyOf(const QString &memoryId);
    /// Gives up what was typed about a memory.
    static void giveUp(MemoryInputs &inputs, const QString &memoryId);

Q_SIGNALS:
    void changed();
    void textChanged();
    /// The service has another wording.
    void reworded(const QString &memoryId, const QString &content);
    /// What became of a change whose sheet was closed meanwhile.
    void settledUnseen(const QString &text, bool failed);

private:
    void read();
    QCoro::Task<> load();
    QCoro::Task<> saveNow(QString content);
    QCoro::Task<> undoNow();
    /// After a conflict: what it is now, for the sentence alone.
    QCoro::Task<> learnCurrent();
    bool isStill(quint64 generation, const QString &owner);
    void show(const MemoryHistoryResp &history);
    void judge();
    void onSaved(const QString &content, const MemoryCorrectionOutcome &outcome);
    void tellUnseen(const QString &memoryId, const QString &content, const MemoryCorrectionOutcome &outcome);
    void settle(State state, const QString &message, bool mustReopen = false);
    void onInputs();
    void keep(const QString &text);

    MemoryServices m_services;
    quint64 m_generation = 0; ///< counts what was opened
    MemoryItemDTO m_item;
    MemoryHistoryResp m_history;
    QString m_revision; ///< what the next change is based on
    QString m_text;
    QString m_base;         ///< the wording that it is typed upon
    QString m_told;         ///< the wording that a conflict has just been told with
    QSet<QString> m_saving; ///< memories whose correction is under way, whatever sheet is open
    State m_state = State::Closed;
    QString m_message;
    bool m_mustReopen = false;
    bool m_undone = false;
    RecordListModel<MemoryOrigin> m_origins;
};

} // namespace lmp
