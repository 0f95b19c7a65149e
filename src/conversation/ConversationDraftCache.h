#pragma once

#include "conversation/ConversationDTO.h"
#include "platform/ApplicationSupport.h"
#include "platform/AtomicFile.h"

#include <QDateTime>

namespace lmp {

/// Whole conversations that the service does not have yet, one file each, so that nothing is lost with the network.
///
/// A value that holds the folder and nothing else. Blocks on the disk; any thread, one at a time for one conversation.
/// What cannot be read is never deleted and never overwritten.
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
            unreadable,          ///< there is a file, and it is no draft
            storage,             ///< the system refused: full, read-only, not allowed
        };
        Kind kind = Kind::storage;
        QString reason; ///< the sentence shown
        bool operator==(const CacheError &) const = default;
    };
    struct Listing {
        QList<Entry> entries;     ///< of the account, newest first
        qsizetype unreadable = 0; ///< files of whatever account that could not be read
    };
    template <class T>
    using Outcome = std::expected<T, CacheError>;

    explicit ConversationDraftCache(const ApplicationSupport &support);

    /// Replaces the conversation's file. A file there that is no draft is moved beside it first.
    /// @param account the signed-in user's id, or none
    Outcome<void> save(const std::optional<QString> &account, const Entry &entry) const;
    /// The conversation's draft, or none when there is no file.
    Outcome<std::optional<Entry>> read(const std::optional<QString> &account, const QString &id) const;
    /// Removes the file if it still is the write `writeId`; any other is left alone.
    Outcome<void> remove(const std::optional<QString> &account, const QString &id, const QString &writeId) const;
    Outcome<Listing> list(const std::optional<QString> &account) const;

    /// An entry of `snapshot` with a fresh write id.
    static Entry entry(ConversationDTO snapshot, const QDateTime &now);

private:
    Outcome<QString> path(const std::optional<QString> &account, const QString &id) const;

    ApplicationSupport m_support;
};
BOOST_DESCRIBE_STRUCT(ConversationDraftCache::Entry, (), (writeId, updatedAt, snapshot))

} // namespace lmp
