#pragma once

#include "conversation/ConversationInput.h"
#include "conversation/DraftFolder.h"

#include <QDateTime>

namespace lmp {

/// What stands unsent in the input boxes, one file a conversation, so that a crash or a restart costs nobody a
/// sentence.
///
/// A value that holds the folder and nothing else. Blocks on the disk; any thread, any number of windows and processes:
/// a save that would replace what somebody else wrote fails instead. On every failure the file stays as it was.
class ConversationInputDraftStore {
public:
    using Input = ConversationInput;
    struct Entry {
        QString id; ///< of the conversation
        std::optional<QString> writeId;
        QString title;            ///< of the conversation, for listing
        qint64 cloudRevision = 0; ///< what the service had when the input was saved
        QString updatedAt;        ///< ISO 8601, UTC
        Input input;
        bool operator==(const Entry &) const = default;
    };
    enum class StoreError {
        invalidScope,     ///< no account or conversation to keep it under
        invalidEntry,     ///< the entry names no conversation
        tooLarge,         ///< the encoding is longer than `maxBytes`
        changedElsewhere, ///< another window or process has written since
        unreadable,       ///< there is a file, and it is no draft
        storage,          ///< the system refused: full, read-only, not allowed
    };
    struct Listing {
        QList<Entry> entries;     ///< of the account, newest first
        qsizetype unreadable = 0; ///< how many files could not be read
        QStringList spoilt = {};  ///< of them, those that are no drafts, whenever one looks
    };
    template <class T>
    using Outcome = std::expected<T, StoreError>;

    static constexpr qsizetype maxBytes = 2'000'000;

    /// @param scope as with DraftFolder
    explicit ConversationInputDraftStore(const ApplicationSupport &support, const QString &scope = {});

    /// Replaces the input of `entry.id`, stamped with a fresh write id and the time; one that is empty removes the
    /// file.
    /// @param account the signed-in user's id, or the word for nobody
    /// @param known the write id that this window last read or wrote; none when it knows of no file
    /// @return the write id from now on; none when there is no file any more
    Outcome<std::optional<QString>> save(const QString &account, Entry entry, const std::optional<QString> &known,
                                         const QDateTime &now) const;
    /// The input of a conversation, or none when there is no file.
    Outcome<std::optional<Entry>> read(const QString &account, const QString &id) const;
    Outcome<Listing> list(const QString &account) const;

    /// An id under which a window keeps its own input of `id` while another window's stands in its place; another one
    /// each time.
    static QString copyId(const QString &id);
    /// The conversation that an entry is of, whether it is such a copy or not.
    static QString originalId(const QString &id);

    /// What a failure of the folder is here.
    static StoreError storeError(DraftFolder::Failure failure);
    /// The sentence shown.
    static QString describe(StoreError error);

private:
    DraftFolder m_folder;
};
BOOST_DESCRIBE_STRUCT(ConversationInputDraftStore::Entry, (), (id, writeId, title, cloudRevision, updatedAt, input))

} // namespace lmp
