#pragma once

#include "conversation/ConversationAccount.h"
#include "platform/Clock.h"
#include "screens/chat/ComposerInputFile.h"

#include <QCoroTask>

#include <QHash>
#include <QObject>
#include <QThreadPool>

namespace lmp {

/// What is typed and not sent in one window, kept apart for each conversation, and put on disk when it is left or the
/// typing pauses.
///
/// Part of the chat's model; the clock outlives it. UI thread. Of an incognito conversation nothing is kept. What one
/// account typed is put away when another signs in, and is there again when it comes back.
class ComposerInputs : public QObject {
    Q_OBJECT
public:
    /// The conversation whose input is meant.
    struct Place {
        QString id = {};          ///< empty: none is open, and what is typed goes to the next fresh one
        QString title = {};       ///< empty while it has no message
        qint64 cloudRevision = 0; ///< 0 while the service does not have it; -1 when that is not known
        bool incognito = false;

        bool isFresh() const { return title.isEmpty() && cloudRevision == 0; }
    };

    ComposerInputs(ComposerInputFile files, Clock &clock, QObject *parent = nullptr);
    ~ComposerInputs() override;

    /// Puts the input of the conversation before away, and takes out that of `place`. A fresh one takes over what was
    /// left unsent in the last fresh one.
    void moveTo(const Place &place);
    /// More has become known of the conversation in use.
    void describe(const Place &place);

    /// What stands in the box in use.
    ConversationInput current() const { return m_boxes.value(m_id).input; }
    void setText(const QString &text);
    void setRetryMessage(std::optional<QString> messageId);
    void clear();

    /// Puts away what there is and begins with what the disk has for `account`.
    void open(const std::optional<QString> &account);
    /// Whether the disk has everything that is to be kept.
    bool isKept() const;
    /// Puts on disk what is not there yet. @return false when that did not work
    QCoro::Task<bool> keep();

Q_SIGNALS:
    /// The box in use holds something else, other than by `setText`.
    void replaced();
    /// What stands in the boxes that are not in use has been put on disk.
    void kept();

private:
    struct Box {
        Place place;
        ConversationInput input;
        quint64 edits = 0;
        quint64 keptEdits = 0;

        bool isDirty() const { return edits != keptEdits && !place.incognito; }
    };
    struct Write {
        ComposerInputFile::Entry entry;
        quint64 edits = 0;
        bool done = false;
    };

    void change(const std::function<void(ConversationInput &)> &change);
    void takeOver();
    QCoro::Task<> keepNow();
    QCoro::Task<> keepAfterPause();
    QList<Write> dirty() const;
    QCoro::Task<> read();
    void adopt(const ComposerInputFile::Listing &listing);

    ComposerInputFile m_files;
    Clock &m_clock;
    std::optional<QString> m_account;
    quint64 m_generation = 0; ///< counts the accounts opened
    bool m_keepWaits = false;
    std::stop_source m_stop;
    QHash<QString, Box> m_boxes; ///< by conversation
    QString m_id;                ///< of the box in use
    QThreadPool m_pool;          ///< of one thread: files are written in the order in which that was decided
};

} // namespace lmp
