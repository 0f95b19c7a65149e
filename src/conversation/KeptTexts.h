#pragma once

#include "conversation/KeptText.h"
#include "conversation/KeptTextStore.h"
#include "platform/Clock.h"

#include <QCoroTask>
#include <QHash>
#include <QObject>

#include <functional>

namespace lmp {

struct KeptTextWrite;

/// Texts that somebody is typing, by what they are for, put on disk soon after they were typed.
///
/// Owned by what shows them; the clock outlives it. UI thread; files are read and written on the file thread, in order.
/// What the disk refuses is tried again until it is taken. What one account typed is put away when another signs in,
/// and is there again when it comes back. What another window wrote is never overwritten: `KeptText::theirs` says so,
/// and until somebody has chosen our own text is kept beside.
class KeptTexts : public QObject {
    Q_OBJECT
public:
    using Place = KeptText::Place;
    using Boxes = QHash<QString, KeptText>;

    /// How long what is typed stays in memory alone.
    static constexpr std::chrono::milliseconds typingPause{300};
    /// How soon what the disk refused is tried again.
    static constexpr std::chrono::milliseconds retryPause{2000};

    KeptTexts(KeptTextStore store, Clock &clock, QObject *parent = nullptr);
    ~KeptTexts() override;

    /// Of the account, by what they are for.
    const Boxes &boxes() const { return m_boxes; }
    /// One of them; one with nothing in it where there is none.
    KeptText box(const QString &id) const { return m_boxes.value(id); }
    void describe(const Place &place);
    void change(const QString &id, const std::function<void(ConversationInput &)> &change);
    /// What stands in `from` stands in `to` from now on.
    void move(const QString &from, const QString &to);
    /// Lets go of one that is kept nowhere.
    void drop(const QString &id) { m_boxes.remove(id); }
    /// What stands in the box was sent: the box is empty, and its files stay until `release`.
    void hold(const QString &id, quint64 ticket);
    /// Everything sent up to `ticket` is on disk as a message, or with the service.
    void release(const QString &id, quint64 ticket);

    /// Puts away what there is and begins with what the disk has for `account`.
    /// @param samePerson only now it is known who it is that has been typing
    void open(const std::optional<QString> &account, bool samePerson = false);
    const std::optional<QString> &account() const { return m_account; }
    /// The account whose texts were restored.
    const std::optional<QString> &restoredAccount() const { return m_restoredAccount; }
    /// The account's files that could not be read; none while that is not known, or when it could not be learned.
    const std::optional<qsizetype> &unreadable() const { return m_unreadable; }
    /// Whether the disk has everything that is to be kept.
    bool isKept() const;
    /// Puts on disk what is not there yet, behind what is being written. @return false when that did not work
    QCoro::Task<bool> keep();
    /// The same without waiting, and again until it works.
    void keepSoon();
    /// Looks whether another window has written.
    void look(const QString &id);

    /// Why the text is not on disk, or what the disk has is not in it; null when all is well.
    QString error(const QString &id) const;
    /// Puts `input` in the place of what the other window wrote.
    void resolve(const QString &id, const ConversationInput &input);
    /// Has back what `resolve` gave up, in exchange for what is there.
    void takeBack(const QString &id);
    void forgetGivenUp(const QString &id);

Q_SIGNALS:
    /// The text holds something else, other than by `change`.
    void replaced(const QString &id);
    /// Any of the texts may, and what the disk had of them is there.
    void restored();
    /// `error` or anything else but the texts may have changed.
    void stateChanged();
    /// What was written, or could not be.
    void written(const QStringList &ids);

private:
    KeptText &at(const QString &id);
    KeptText *find(const std::optional<QString> &account, const QString &id);
    QCoro::Task<> keepAfterPause();
    /// Where `attempt` does not keep all of it, it is tried again.
    QCoro::Task<> untilKept(QCoro::Task<bool> attempt);
    QCoro::Task<> retry();
    /// @param last there is no time to learn what the disk has: what was not restored is kept beside it
    QList<KeptTextWrite> dirty(bool last = false);
    void collect(Boxes &boxes, bool last, QList<KeptTextWrite> &writes) const;
    QCoro::Task<bool> keepWritten(QList<KeptTextWrite> writes);
    void settle(KeptText &box, const KeptTextWrite &write);
    /// The text goes on from what the disk has. The file thread learns of it in the order of what is written there.
    void goOnFrom(KeptText &box, const KeptText::Entry &entry);
    void removeCopy(const KeptText &box, const KeptText::Copy &copy);
    QCoro::Task<> restore();
    QCoro::Task<> readAgain(QString id);
    void adopt(const QString &id, const std::optional<KeptText::Entry> &entry);
    void adoptCopy(const KeptText::Entry &entry);

    KeptTextStore m_store;
    Clock &m_clock;
    std::optional<QString> m_account;
    std::optional<QString> m_restoredAccount;
    std::optional<qsizetype> m_unreadable;
    quint64 m_generation = 0; ///< counts the accounts opened
    int m_writing = 0;        ///< what the file thread has not come back from
    bool m_keepWaits = false;
    bool m_retryWaits = false;
    std::stop_source m_stop;
    Boxes m_boxes;
    QHash<QString, Boxes> m_left; ///< of accounts that went before the disk had everything
};

} // namespace lmp
