#pragma once

#include "conversation/ConversationAccount.h"
#include "platform/Clock.h"
#include "screens/chat/ComposerBox.h"

#include <QCoroTask>

#include <QHash>
#include <QObject>
#include <QThreadPool>

namespace lmp {

/// What is typed and not sent in one window, kept apart for each conversation, and put on disk when it is left or soon
/// after it was typed.
///
/// Part of the chat's model; the clock outlives it. UI thread; the disk is a thread of its own. Of an incognito
/// conversation nothing is kept. What one account typed is put away when another signs in, and is there again when it
/// comes back. What another window wrote is never overwritten: `isConflicted` asks the person, and until then this
/// window's input is kept beside.
class ComposerInputs : public QObject {
    Q_OBJECT
public:
    using Place = ComposerBox::Place;

    /// How long what is typed stays in memory alone.
    static constexpr std::chrono::milliseconds typingPause{300};
    /// How soon what the disk refused is tried again.
    static constexpr std::chrono::milliseconds retryPause{2000};

    ComposerInputs(ConversationInputDraftStore store, Clock &clock, QObject *parent = nullptr);
    ~ComposerInputs() override;

    /// Puts the input of the conversation before away, and takes out that of `place`. A fresh one takes over what was
    /// left unsent in the last fresh one.
    /// @param carry what stands in the box now goes along
    void moveTo(const Place &place, bool carry = false);
    /// More has become known of the conversation in use.
    void describe(const Place &place);

    /// What stands in the box in use.
    ConversationInput current() const { return m_boxes.value(m_id).input; }
    void setText(const QString &text);
    void setRetryMessage(std::optional<QString> messageId);
    void clear();

    /// Puts away what there is and begins with what the disk has for `account`.
    void open(const std::optional<QString> &account);
    /// The account whose input was restored.
    const std::optional<QString> &restoredDraftAccount() const { return m_restoredAccount; }
    /// Whether the disk has everything that is to be kept.
    bool isKept() const;
    /// Puts on disk what is not there yet. @return false when that did not work
    QCoro::Task<bool> keep();

    // Of the box in use.
    bool isRestored() const { return m_boxes.value(m_id).restored; }
    std::optional<QString> draftWriteId() const { return m_boxes.value(m_id).draftWriteId; }
    /// Why the box is not on disk, or what the disk has is not in the box; null when all is well.
    QString error() const;
    bool isConflicted() const { return m_boxes.value(m_id).theirs.has_value(); }
    /// What another window wrote, while that is so.
    std::optional<ComposerBox::Entry> theirs() const { return m_boxes.value(m_id).theirs; }
    /// Puts what stands here in the place of what the other window wrote.
    void keepMine();
    /// Gives up what stands here for what the other window wrote.
    void takeTheirs();

Q_SIGNALS:
    /// The box in use holds something else, other than by `setText`.
    void replaced();
    /// `error`, `isConflicted` or `isRestored` may have changed.
    void stateChanged();
    /// What stands in the boxes that are not in use has been put on disk.
    void kept();

private:
    struct Write;
    using Boxes = QHash<QString, ComposerBox>;

    ComposerBox &box(const QString &id);
    ComposerBox *find(const std::optional<QString> &account, const QString &id);
    void change(const std::function<void(ConversationInput &)> &change);
    void takeOver();

    QCoro::Task<> keepNow();
    QCoro::Task<> putAway(QList<Write> writes);
    QCoro::Task<> keepAfterPause();
    /// @param last there is no time to learn what the disk has: what was not restored is kept beside it
    QList<Write> dirty(bool last = false);
    void collect(Boxes &boxes, bool last, QList<Write> &writes) const;
    static QList<Write> written(const ConversationInputDraftStore &store, QList<Write> writes);
    QCoro::Task<bool> keepWritten(QList<Write> writes);
    void settle(ComposerBox &box, const Write &write);
    /// The box goes on from what the disk has. The file thread learns of it in the order of what is written there.
    void goOnFrom(ComposerBox &box, const ComposerBox::Entry &entry);
    void removeCopy(ComposerBox &box);

    QCoro::Task<> restore();
    QCoro::Task<> readAgain(QString id);
    void adopt(const QString &id, const std::optional<ComposerBox::Entry> &entry);
    void adoptCopy(const ComposerBox::Entry &copy);

    ConversationInputDraftStore m_store;
    Clock &m_clock;
    std::optional<QString> m_account;
    std::optional<QString> m_restoredAccount;
    quint64 m_generation = 0; ///< counts the accounts opened
    bool m_keepWaits = false;
    std::stop_source m_stop;
    Boxes m_boxes;                ///< of the account, by conversation
    QHash<QString, Boxes> m_left; ///< of accounts that went before the disk had everything
    QString m_id;                 ///< of the box in use
    QThreadPool m_pool;           ///< of one thread: files are written in the order in which that was decided
};

} // namespace lmp
