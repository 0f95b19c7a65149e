#pragma once

#include "conversation/ConversationDTO.h"
#include "conversation/DraftFolder.h"

#include <QDateTime>

namespace lmp {

/// Whole conversations that the service does not have yet, one file each, so that nothing is lost with the network.
///
/// A value that holds the folder and nothing else. Blocks on the disk; any thread, any number of windows and processes:
/// a save that would replace what somebody else wrote fails instead. On every failure the file stays as it was.
class ConversationDraftCache {
public:
    struct Entry {
        QString writeId;   ///< of the write that made the file
        QString updatedAt; ///< ISO 8601, UTC
        ConversationDTO snapshot;
    };
    struct CacheError {
        enum class Kind {
            missingAccount,      ///< nobody is signed in
            invalidConversation, ///< the conversation has no id
            changedElsewhere,    ///< another window or process has written since
            unreadable,          ///< there is a file, and it is no draft
            storage,             ///< the system refused: full, read-only, not allowed
        };
        Kind kind = Kind::storage;
        QString reason; ///< the sentence shown
        bool operator==(const CacheError &) const = default;
    };
    struct Listing {
        QList<Entry> entries;     ///< of the account, newest first
        qsizetype unreadable = 0; ///< how many files could not be read
        QStringList spoilt = {};  ///< of them, those that are no drafts, whenever one looks
    };
    template <class T>
    using Outcome = std::expected<T, CacheError>;

    /// @param scope as with DraftFolder
    explicit ConversationDraftCache(const ApplicationSupport &support, const QString &scope = {});

    /// Replaces the conversation's file, stamped with a fresh write id and the time. A file there that is no draft is
    /// moved beside it first.
    /// @param account the signed-in user's id, or none
    /// @param known the write id that the caller last read or wrote; none when it knows of no file
    /// @return the write id from now on
    Outcome<QString> save(const std::optional<QString> &account, const ConversationDTO &snapshot,
                          const std::optional<QString> &known, const QDateTime &now) const;
    /// The conversation's draft, or none when there is no file.
    Outcome<std::optional<Entry>> read(const std::optional<QString> &account, const QString &id) const;
    /// Removes the file if it still is the write `known`; any other is left alone and reported.
    Outcome<void> remove(const std::optional<QString> &account, const QString &id, const QString &known) const;
    Outcome<Listing> list(const std::optional<QString> &account) const;

private:
    static Outcome<void> check(const std::optional<QString> &account, const QString &id);

    DraftFolder m_folder;
};
BOOST_DESCRIBE_STRUCT(ConversationDraftCache::Entry, (), (writeId, updatedAt, snapshot))

} // namespace lmp
