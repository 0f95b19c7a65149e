#pragma once

#include "conversation/ConversationInputDraftStore.h"

namespace lmp {

/// Texts about memories, one file each, under KeptTexts.
///
/// A value that holds the folder and nothing else. Blocks on the disk; any thread. Of an input only the text is kept.
class MemoryInputStore {
public:
    using Entry = ConversationInputDraftStore::Entry;
    using StoreError = ConversationInputDraftStore::StoreError;
    using Listing = ConversationInputDraftStore::Listing;
    template <class T>
    using Outcome = ConversationInputDraftStore::Outcome<T>;
    /// One text, as it lies on disk.
    struct Record {
        QString id; ///< what the text is for
        std::optional<QString> writeId;
        QString updatedAt; ///< ISO 8601, UTC
        QString text;
    };

    static constexpr qsizetype maxBytes = ConversationInputDraftStore::maxBytes;

    explicit MemoryInputStore(const ApplicationSupport &support, const QString &scope);

    // As with ConversationInputDraftStore.
    Outcome<std::optional<QString>> save(const QString &account, const Entry &entry,
                                         const std::optional<QString> &known, const QDateTime &now) const;
    Outcome<std::optional<Entry>> read(const QString &account, const QString &id) const;
    Outcome<Listing> list(const QString &account) const;

private:
    DraftFolder m_folder;
};
BOOST_DESCRIBE_STRUCT(MemoryInputStore::Record, (), (id, writeId, updatedAt, text))

} // namespace lmp
