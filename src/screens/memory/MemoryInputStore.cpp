#include "screens/memory/MemoryInputStore.h"

#include <QUuid>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

ConversationInputDraftStore::Entry entryOf(const MemoryInputStore::Record &record) {
    ConversationInputDraftStore::Entry entry;
    entry.id = record.id;
    entry.writeId = record.writeId;
    entry.updatedAt = record.updatedAt;
    entry.input.text = record.text;
    return entry;
}

} // namespace

MemoryInputStore::MemoryInputStore(const ApplicationSupport &support, const QString &scope)
    : m_folder(support, u"MemoryInput/v1"_s, scope) {}

MemoryInputStore::Outcome<std::optional<QString>> MemoryInputStore::save(const QString &account, const Entry &entry,
                                                                         const std::optional<QString> &known,
                                                                         const QDateTime &now) const {
    if (account.isEmpty() || entry.id.isEmpty())
        return std::unexpected(StoreError::invalidScope);
    std::optional<QByteArray> bytes;
    std::optional<QString> writeId;
    if (!entry.input.isEmpty()) {
        writeId = QUuid::createUuid().toString(QUuid::WithoutBraces);
        bytes = Json::encode(Record{.id = entry.id,
                                    .writeId = writeId,
                                    .updatedAt = now.toUTC().toString(Qt::ISODateWithMs),
                                    .text = entry.input.text});
        if (bytes->size() > maxBytes)
            return std::unexpected(StoreError::tooLarge);
    }
    const auto replaced = m_folder.replace<Record>(account, entry.id, known, bytes);
    if (!replaced)
        return std::unexpected(ConversationInputDraftStore::storeError(replaced.error()));
    return writeId;
}

MemoryInputStore::Outcome<std::optional<MemoryInputStore::Entry>> MemoryInputStore::read(const QString &account,
                                                                                         const QString &id) const {
    if (account.isEmpty() || id.isEmpty())
        return std::unexpected(StoreError::invalidScope);
    const auto record = m_folder.read<Record>(account, id);
    if (!record)
        return std::unexpected(ConversationInputDraftStore::storeError(record.error()));
    return *record ? std::optional(entryOf(**record)) : std::nullopt;
}

MemoryInputStore::Outcome<MemoryInputStore::Listing> MemoryInputStore::list(const QString &account) const {
    if (account.isEmpty())
        return std::unexpected(StoreError::invalidScope);
    const auto records = m_folder.list<Record>(account, [](const Record &record) { return record.id; });
    if (!records)
        return std::unexpected(ConversationInputDraftStore::storeError(records.error()));
    Listing listing{.entries = {}, .unreadable = records->unreadable, .spoilt = records->spoilt};
    for (const Record &record : records->records)
        listing.entries.push_back(entryOf(record));
    return listing;
}

} // namespace lmp
