#include "conversation/ConversationInputDraftStore.h"

#include "conversation/ConversationTexts.h"

#include <QUuid>

#include <algorithm>

namespace lmp {

namespace {

using StoreError = ConversationInputDraftStore::StoreError;

/// No id of the service's has this in it: it would not be one word in an address. What follows tells the copies of one
/// conversation apart; older ones end here.
const QString copyMark = QStringLiteral(" copy");

} // namespace

ConversationInputDraftStore::ConversationInputDraftStore(const ApplicationSupport &support, const QString &scope)
    : m_folder(support, QStringLiteral("UnsentInput/v1"), scope) {}

ConversationInputDraftStore::Outcome<std::optional<QString>>
ConversationInputDraftStore::save(const QString &account, Entry entry, const std::optional<QString> &known,
                                  const QDateTime &now) const {
    if (entry.id.isEmpty())
        return std::unexpected(StoreError::invalidEntry);
    if (account.isEmpty())
        return std::unexpected(StoreError::invalidScope);
    const QString id = entry.id;
    std::optional<QByteArray> bytes;
    std::optional<QString> writeId;
    if (!entry.input.isEmpty()) {
        writeId = QUuid::createUuid().toString(QUuid::WithoutBraces);
        entry.writeId = writeId;
        entry.updatedAt = now.toUTC().toString(Qt::ISODateWithMs);
        bytes = Json::encode(entry);
        if (bytes->size() > maxBytes)
            return std::unexpected(StoreError::tooLarge);
    }
    const auto replaced = m_folder.replace<Entry>(account, id, known, bytes);
    if (!replaced)
        return std::unexpected(storeError(replaced.error()));
    return writeId;
}

ConversationInputDraftStore::Outcome<std::optional<ConversationInputDraftStore::Entry>>
ConversationInputDraftStore::read(const QString &account, const QString &id) const {
    if (account.isEmpty() || id.isEmpty())
        return std::unexpected(StoreError::invalidScope);
    auto entry = m_folder.read<Entry>(account, id);
    if (!entry)
        return std::unexpected(storeError(entry.error()));
    // A file under this name with another conversation in it was not written by us.
    if (*entry && (*entry)->id != id)
        return std::unexpected(StoreError::unreadable);
    return *std::move(entry);
}

ConversationInputDraftStore::Outcome<ConversationInputDraftStore::Listing>
ConversationInputDraftStore::list(const QString &account) const {
    if (account.isEmpty())
        return std::unexpected(StoreError::invalidScope);
    auto listing = m_folder.list<Entry>(account, [](const Entry &entry) { return entry.id; });
    if (!listing)
        return std::unexpected(storeError(listing.error()));
    std::ranges::sort(listing->records, std::greater(), &Entry::updatedAt);
    return Listing{std::move(listing->records), listing->unreadable, std::move(listing->spoilt)};
}

ConversationInputDraftStore::StoreError ConversationInputDraftStore::storeError(DraftFolder::Failure failure) {
    switch (failure) {
    case DraftFolder::Failure::unreadable:
        return StoreError::unreadable;
    case DraftFolder::Failure::changedElsewhere:
        return StoreError::changedElsewhere;
    case DraftFolder::Failure::storage:
        break;
    }
    return StoreError::storage;
}

QString ConversationInputDraftStore::copyId(const QString &id) {
    return id + copyMark + u' ' + QUuid::createUuid().toString(QUuid::WithoutBraces);
}

QString ConversationInputDraftStore::originalId(const QString &id) {
    const auto mark = id.lastIndexOf(copyMark);
    const auto end = mark + copyMark.size();
    return mark > 0 && (end == id.size() || id.at(end) == u' ') ? id.first(mark) : id;
}

QString ConversationInputDraftStore::describe(StoreError error) {
    switch (error) {
    case StoreError::invalidScope:
    case StoreError::invalidEntry:
        return ConversationTexts::inputWithoutScope();
    case StoreError::tooLarge:
        return ConversationTexts::inputTooLarge();
    case StoreError::changedElsewhere:
        return ConversationTexts::inputChangedElsewhere();
    case StoreError::unreadable:
        return ConversationTexts::inputUnreadable();
    case StoreError::storage:
        break;
    }
    return ConversationTexts::inputNotWritten();
}

} // namespace lmp
