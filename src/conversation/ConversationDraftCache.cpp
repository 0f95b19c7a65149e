#include "conversation/ConversationDraftCache.h"

#include "conversation/ConversationTexts.h"
#include "core/Json.h"
#include "platform/Log.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QUuid>

#include <algorithm>
#include <cerrno>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

using Kind = ConversationDraftCache::CacheError::Kind;
using Entry = ConversationDraftCache::Entry;

const QString suffix = u".json"_s;
const QString asideSuffix = u".unreadable"_s;

std::unexpected<ConversationDraftCache::CacheError> failed(Kind kind, const QString &reason) {
    return std::unexpected(ConversationDraftCache::CacheError{kind, reason});
}

/// A list in JSON, so that no account and conversation together look like another pair.
QString fileName(const QString &account, const QString &id) {
    const QByteArray key = Json::encode(QList<QString>{account, id});
    return QString::fromLatin1(QCryptographicHash::hash(key, QCryptographicHash::Sha256).toHex()) + suffix;
}

std::expected<std::optional<Entry>, ConversationDraftCache::CacheError> readFile(const QString &path) {
    const auto bytes = AtomicFile::read(path);
    if (!bytes && bytes.error().code == ENOENT)
        return std::nullopt;
    if (!bytes)
        return failed(bytes.error().code == EFBIG ? Kind::unreadable : Kind::storage,
                      ConversationTexts::draftsUnreadable());
    auto entry = Json::decode<Entry>(*bytes);
    if (!entry)
        return failed(Kind::unreadable, ConversationTexts::draftsUnreadable());
    return *std::move(entry);
}

/// Moves what is no draft out of the way under a name of its own, next to where it was.
bool moveAside(const QString &path) {
    const QString aside = path.chopped(suffix.size()) + u'.' + QUuid::createUuid().toString(QUuid::Id128) + asideSuffix;
    const bool moved = QFile::rename(path, aside);
    qCWarning(logConversation) << "a draft could not be read and was kept aside:" << moved;
    return moved;
}

} // namespace

ConversationDraftCache::ConversationDraftCache(const ApplicationSupport &support)
    : m_support(support) {}

ConversationDraftCache::Entry ConversationDraftCache::entry(ConversationDTO snapshot, const QDateTime &now) {
    return {QUuid::createUuid().toString(QUuid::WithoutBraces), now.toUTC().toString(Qt::ISODateWithMs),
            std::move(snapshot)};
}

ConversationDraftCache::Outcome<QString> ConversationDraftCache::path(const std::optional<QString> &account,
                                                                      const QString &id) const {
    if (!account || account->isEmpty())
        return failed(Kind::missingAccount, ConversationTexts::draftWithoutAccount());
    if (id.isEmpty())
        return failed(Kind::invalidConversation, ConversationTexts::draftWithoutConversation());
    const auto folder = m_support.folder(u"ConversationDrafts/v1"_s);
    if (!folder)
        return failed(Kind::storage, ConversationTexts::draftNotWritten());
    return *folder + u'/' + fileName(*account, id);
}

ConversationDraftCache::Outcome<void> ConversationDraftCache::save(const std::optional<QString> &account,
                                                                   const Entry &entry) const {
    const auto file = path(account, entry.snapshot.id);
    if (!file)
        return std::unexpected(file.error());
    const auto there = readFile(*file);
    const bool free = there || (there.error().kind == Kind::unreadable && moveAside(*file));
    if (!free || !AtomicFile::write(*file, Json::encode(entry)))
        return failed(Kind::storage, ConversationTexts::draftNotWritten());
    return {};
}

ConversationDraftCache::Outcome<std::optional<Entry>>
ConversationDraftCache::read(const std::optional<QString> &account, const QString &id) const {
    const auto file = path(account, id);
    if (!file)
        return std::unexpected(file.error());
    auto entry = readFile(*file);
    // A file under this name with another conversation in it was not written by us.
    if (entry && *entry && (*entry)->snapshot.id != id)
        return failed(Kind::unreadable, ConversationTexts::draftsUnreadable());
    return entry;
}

ConversationDraftCache::Outcome<void> ConversationDraftCache::remove(const std::optional<QString> &account,
                                                                     const QString &id, const QString &writeId) const {
    const auto file = path(account, id);
    if (!file)
        return std::unexpected(file.error());
    const auto there = readFile(*file);
    if (!there)
        return std::unexpected(there.error());
    if (*there && (*there)->writeId == writeId && !AtomicFile::remove(*file))
        return failed(Kind::storage, ConversationTexts::draftNotWritten());
    return {};
}

ConversationDraftCache::Outcome<ConversationDraftCache::Listing>
ConversationDraftCache::list(const std::optional<QString> &account) const {
    if (!account || account->isEmpty())
        return failed(Kind::missingAccount, ConversationTexts::draftWithoutAccount());
    const auto folder = m_support.folder(u"ConversationDrafts/v1"_s);
    if (!folder || !QDir(*folder).isReadable())
        return failed(Kind::storage, ConversationTexts::draftsUnreadable());
    Listing listing;
    const QDir files(*folder);
    listing.unreadable = files.entryList({u'*' + asideSuffix}, QDir::Files).size();
    for (const QString &name : files.entryList({u'*' + suffix}, QDir::Files)) {
        auto entry = readFile(files.filePath(name));
        if (!entry)
            ++listing.unreadable;
        // The name is the only place that knows the account.
        else if (*entry && fileName(*account, (*entry)->snapshot.id) == name)
            listing.entries.push_back(**std::move(entry));
    }
    std::ranges::sort(listing.entries, std::greater(), &Entry::updatedAt);
    return listing;
}

} // namespace lmp
