#pragma once

#include "conversation/ConversationAccount.h"
#include "conversation/DraftFolder.h"
#include "platform/Clock.h"

#include <QCoroTask>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QThreadPool>

namespace lmp {

/// What is typed about memories and not saved yet (corrections, a text to import), kept on disk until it is saved or
/// given up, so that neither a closed sheet nor a crash costs anybody a sentence.
///
/// One for the program, shared by its windows; the clock outlives it. UI thread; files are written on a thread of its
/// own, at most `typingPause` after a key. What one account typed is not seen by another. A text that cannot be kept
/// stays here, and `notice` says so.
class MemoryInputs : public QObject {
    Q_OBJECT
public:
    /// One text, as it lies on disk.
    struct Entry {
        QString id; ///< what the text is for
        std::optional<QString> writeId;
        QString updatedAt; ///< ISO 8601, UTC
        QString text;
    };
    static constexpr std::chrono::milliseconds typingPause{400};
    static constexpr qsizetype maxBytes = 2'000'000;

    MemoryInputs(ApplicationSupport support, ConversationAccount account, Clock &clock, QObject *parent = nullptr);
    ~MemoryInputs() override;

    /// What was typed for `key`; empty when nothing was.
    QString text(const QString &key) const;
    /// What is typed for; with a text.
    QSet<QString> keys() const;
    /// An empty text gives up what was kept.
    void setText(const QString &key, const QString &text);
    /// Why something is not on disk; empty when all is.
    const QString &notice() const { return m_notice; }

    /// To be called when somebody else may be signed in.
    void recheckAccount();
    /// Puts on disk what is not there yet. @return false when that did not work
    QCoro::Task<bool> keep();

Q_SIGNALS:
    /// Another text, or none, other than by `setText`; or another notice.
    void replaced();
    /// There is a text for another set of keys.
    void keysChanged();

private:
    struct Box {
        QString text;
        std::optional<QString> writeId; ///< of the file that is ours
        quint64 edits = 0;
        quint64 keptEdits = 0;
    };
    struct Write {
        Entry entry;
        std::optional<QString> known;
        quint64 edits = 0;
        DraftFolder::Outcome<void> done = {};
    };

    QCoro::Task<> keepAfterPause();
    QCoro::Task<> read();
    QList<Write> dirty() const;
    static QList<Write> save(const DraftFolder &folder, const QString &account, QList<Write> writes);
    void setNotice(const QString &notice);

    DraftFolder m_folder;
    ConversationAccount m_who;
    Clock &m_clock;
    std::optional<QString> m_account;
    quint64 m_generation = 0; ///< counts the accounts
    bool m_keepWaits = false;
    QHash<QString, Box> m_boxes;
    QString m_notice;
    std::stop_source m_stop;
    QThreadPool m_pool; ///< of one thread: files are written in the order in which that was decided
};
BOOST_DESCRIBE_STRUCT(MemoryInputs::Entry, (), (id, writeId, updatedAt, text))

} // namespace lmp
