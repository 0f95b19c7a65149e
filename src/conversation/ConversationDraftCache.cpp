#include "conversation/ConversationDraftCache.h"

#include "conversation/ConversationTexts.h"

#include <QUuid>

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

using Kind = ConversationDraftCache::CacheError::Kind;
using Entry = ConversationDraftCache::Entry;

std::unexpected<ConversationDraftCache::CacheError> failed(Kind kind, const QString &reason) {
    return std::unexpected(ConversationDraftCache::CacheError{kind, reason});
}

/// @param storage what is said where the system refused: that depends on what was to be done
std::unexpected<ConversationDraftCache::CacheError> failed(DraftFolder::Failure failure, const QString &storage) {
    switch (failure) {
    case DraftFolder::Failure::unreadable:
        return failed(Kind::unreadable, ConversationTexts::draftsUnreadable());
    case DraftFolder::Failure::changedElsewhere:
        return failed(Kind::changedElsewhere, ConversationTexts::draftChangedElsewhere());
    case DraftFolder::Failure::storage:
        break;
    }
    return failed(Kind::storage, storage);
}

} // namespace

ConversationDraftCache::ConversationDraftCache(const ApplicationSupport &support, const QString &scope)
    : m_folder(support, u"ConversationDrafts/v1"_s, scope) {}

ConversationDraftCache::Outcome<void> ConversationDraftCache::check(const std::optional<QString> &account,
                                                                    const QString &id) {
    if (!account || account->isEmpty())
        return failed(Kind::missingAccount, ConversationTexts::draftWithoutAccount());
    if (id.isEmpty())
        return failed(Kind::invalidConversation, ConversationTexts::draftWithoutConversation());
    return {};
}

ConversationDraftCache::Outcome<QString> ConversationDraftCache::save(const std::optional<QString> &account,
                                                                      const ConversationDTO &snapshot,
                                                                      const std::optional<QString> &known,
                                                                      const QDateTime &now) const {
    if (const auto checked = check(account, snapshot.id); !checked)
        return std::unexpected(checked.error());
    const Entry entry{QUuid::createUuid().toString(QUuid::WithoutBraces), now.toUTC().toString(Qt::ISODateWithMs),
                      snapshot};
    const auto replaced = m_folder.replace<Entry>(*account, snapshot.id, known, Json::encode(entry));
    if (!replaced)
        return failed(replaced.error(), ConversationTexts::draftNotWritten());
    return entry.writeId;
}

ConversationDraftCache::Outcome<std::optional<Entry>>
ConversationDraftCache::read(const std::optional<QString> &account, const QString &id) const {
    if (const auto checked = check(account, id); !checked)
        return std::unexpected(checked.error());
    auto entry = m_folder.read<Entry>(*account, id);
    if (!entry)
        return failed(entry.error(), ConversationTexts::draftsUnreadable());
    // A file under this name with another conversation in it was not written by us.
    if (*entry && (*entry)->snapshot.id != id)
        return failed(Kind::unreadable, ConversationTexts::draftsUnreadable());
    return *std::move(entry);
}

ConversationDraftCache::Outcome<void> ConversationDraftCache::remove(const std::optional<QString> &account,
                                                                     const QString &id, const QString &known) const {
    if (const auto checked = check(account, id); !checked)
        return checked;
    const auto removed = m_folder.replace<Entry>(*account, id, known, std::nullopt);
    if (!removed)
        return failed(removed.error(), ConversationTexts::draftNotWritten());
    return {};
}

ConversationDraftCache::Outcome<ConversationDraftCache::Listing>
ConversationDraftCache::list(const std::optional<QString> &account) const {
    if (!account || account->isEmpty())
        return failed(Kind::missingAccount, ConversationTexts::draftWithoutAccount());
    auto listing = m_folder.list<Entry>(*account, [](const Entry &entry) { return entry.snapshot.id; });
    if (!listing)
        return failed(listing.error(), ConversationTexts::draftsUnreadable());
    std::ranges::sort(listing->records, std::greater(), &Entry::updatedAt);
    return Listing{std::move(listing->records), listing->unreadable, std::move(listing->spoilt)};
}

} // namespace lmp
