#include "screens/chat/ComposerInputFile.h"

#include "conversation/ConversationTexts.h"
#include "core/Json.h"
#include "platform/AtomicFile.h"
#include "platform/Log.h"

#include <QCryptographicHash>
#include <QDir>

#include <algorithm>
#include <cerrno>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

using Entry = ComposerInputFile::Entry;

const QString suffix = u".json"_s;
constexpr qsizetype maxBytes = 2'000'000;

/// A list in JSON, so that no account and conversation together look like another pair.
QString fileName(const QString &account, const QString &id) {
    const QByteArray key = Json::encode(QList<QString>{account, id});
    return QString::fromLatin1(QCryptographicHash::hash(key, QCryptographicHash::Sha256).toHex()) + suffix;
}

enum class Content { None, Entry, Unreadable };

Content readFile(const QString &path, Entry &entry) {
    const auto bytes = AtomicFile::read(path);
    if (!bytes)
        return bytes.error().code == ENOENT ? Content::None : Content::Unreadable;
    auto read = Json::decode<Entry>(*bytes);
    if (!read)
        return Content::Unreadable;
    entry = *std::move(read);
    return Content::Entry;
}

std::unexpected<QString> notWritten() {
    return std::unexpected(ConversationTexts::draftNotWritten());
}

} // namespace

ComposerInputFile::ComposerInputFile(const ApplicationSupport &support)
    : m_support(support) {}

bool ComposerInputFile::isEmpty(const ConversationInput &input) {
    return input.text.isEmpty() && input.parts.isEmpty() && !input.selection;
}

ComposerInputFile::Outcome<QString> ComposerInputFile::path(const std::optional<QString> &account,
                                                            const QString &id) const {
    if (!account || account->isEmpty())
        return std::unexpected(ConversationTexts::draftWithoutAccount());
    if (id.isEmpty())
        return std::unexpected(ConversationTexts::draftWithoutConversation());
    const auto folder = m_support.folder(u"UnsentInput/v1"_s);
    if (!folder)
        return notWritten();
    return *folder + u'/' + fileName(*account, id);
}

ComposerInputFile::Outcome<void> ComposerInputFile::save(const std::optional<QString> &account,
                                                         const Entry &entry) const {
    const auto file = path(account, entry.id);
    if (!file)
        return std::unexpected(file.error());
    Entry there;
    if (readFile(*file, there) == Content::Unreadable)
        return std::unexpected(ConversationTexts::draftsUnreadable());
    if (isEmpty(entry.input)) {
        if (!AtomicFile::remove(*file))
            return notWritten();
        return {};
    }
    const QByteArray bytes = Json::encode(entry);
    if (bytes.size() > maxBytes || !AtomicFile::write(*file, bytes))
        return notWritten();
    return {};
}

ComposerInputFile::Outcome<ComposerInputFile::Listing>
ComposerInputFile::list(const std::optional<QString> &account) const {
    if (!account || account->isEmpty())
        return std::unexpected(ConversationTexts::draftWithoutAccount());
    const auto folder = m_support.folder(u"UnsentInput/v1"_s);
    if (!folder || !QDir(*folder).isReadable())
        return std::unexpected(ConversationTexts::draftsUnreadable());
    Listing listing;
    const QDir files(*folder);
    for (const QString &name : files.entryList({u'*' + suffix}, QDir::Files)) {
        Entry entry;
        const auto content = readFile(files.filePath(name), entry);
        if (content == Content::Unreadable)
            ++listing.unreadable;
        // The name is the only place that knows the account.
        else if (content == Content::Entry && fileName(*account, entry.id) == name)
            listing.entries.push_back(std::move(entry));
    }
    std::ranges::sort(listing.entries, std::greater(), &Entry::updatedAt);
    return listing;
}

} // namespace lmp
