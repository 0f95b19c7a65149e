#pragma once

#include "conversation/ConversationInput.h"
#include "platform/ApplicationSupport.h"

#include <expected>

namespace lmp {

/// Keeps on disk what stands unsent in the input boxes, one file for each account and conversation.
///
/// A value that holds the folder and nothing else. Blocks on the disk; any thread, one at a time for one conversation.
/// What cannot be read is never deleted and never overwritten.
class ComposerInputFile {
public:
    struct Entry {
        QString id; ///< of the conversation
        QString writeId;
        QString title;            ///< of the conversation; empty when it has no message yet
        qint64 cloudRevision = 0; ///< of the conversation when this was kept; 0 when the service does not have it
        QString updatedAt;        ///< ISO 8601, UTC
        ConversationInput input;
        bool operator==(const Entry &) const = default;
    };
    struct Listing {
        QList<Entry> entries;     ///< newest first
        qsizetype unreadable = 0; ///< files of whatever account that could not be read
    };
    /// The sentence that says why not.
    template <class T>
    using Outcome = std::expected<T, QString>;

    explicit ComposerInputFile(const ApplicationSupport &support);

    /// Replaces the conversation's file; an entry with nothing in its box removes it.
    /// @param account the signed-in user's id, or none
    Outcome<void> save(const std::optional<QString> &account, const Entry &entry) const;
    Outcome<Listing> list(const std::optional<QString> &account) const;

    static bool isEmpty(const ConversationInput &input);

private:
    Outcome<QString> path(const std::optional<QString> &account, const QString &id) const;

    ApplicationSupport m_support;
};
BOOST_DESCRIBE_STRUCT(ComposerInputFile::Entry, (), (id, writeId, title, cloudRevision, updatedAt, input))

} // namespace lmp
