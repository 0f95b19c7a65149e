#include "conversation/DraftFolder.h"

#include "platform/Log.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QUuid>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

const QString suffix = u".json"_s;
const QString asideSuffix = u".unreadable"_s;
/// Holders keep the lock for one small write; longer means that one of them hangs.
constexpr std::chrono::milliseconds lockLimit(2000);

} // namespace

QString DraftFolder::fileName(const QString &account, const QString &id) {
    // A list in JSON, so that no account and conversation together look like another pair.
    const QByteArray key = Json::encode(QList<QString>{account, id});
    return QString::fromLatin1(QCryptographicHash::hash(key, QCryptographicHash::Sha256).toHex()) + suffix;
}

DraftFolder::Outcome<QString> DraftFolder::path(const QString &account, const QString &id) const {
    const auto folder = m_support.folder(m_name);
    if (!folder)
        return std::unexpected(Failure::storage);
    return *folder + u'/' + fileName(account, id);
}

DraftFolder::Outcome<FileLock> DraftFolder::hold() const {
    auto lock = FileLock::hold(m_support.folder(m_name).value_or(QString()) + u"/.lock"_s, lockLimit);
    if (lock)
        return *std::move(lock);
    qCWarning(logConversation) << "the drafts cannot be locked:" << lock.error().step << lock.error().reason;
    return std::unexpected(Failure::storage);
}

DraftFolder::Outcome<DraftFolder::Files> DraftFolder::files() const {
    const auto folder = m_support.folder(m_name);
    if (!folder || !QDir(*folder).isReadable())
        return std::unexpected(Failure::storage);
    const QDir dir(*folder);
    Files files{.records = {}, .aside = dir.entryList({u'*' + asideSuffix}, QDir::Files).size()};
    for (const QString &name : dir.entryList({u'*' + suffix}, QDir::Files))
        files.records.push_back(dir.filePath(name));
    return files;
}

bool DraftFolder::moveAside(const QString &path) {
    const QString aside = path.chopped(suffix.size()) + u'.' + QUuid::createUuid().toString(QUuid::Id128) + asideSuffix;
    const bool moved = QFile::rename(path, aside);
    qCWarning(logConversation) << "a draft could not be read and was kept aside:" << moved;
    return moved;
}

} // namespace lmp
