#include "conversation/DraftFolder.h"

#include "platform/Log.h"

#include <QDir>
#include <QFile>
#include <QUuid>

#include <sys/stat.h>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

const QString suffix = u".json"_s;
const QString asideSuffix = u".unreadable"_s;
/// With what QDir calls system files: links that lead nowhere, pipes. All of them count as drafts that cannot be read.
constexpr QDir::Filters allFiles = QDir::Files | QDir::Dirs | QDir::System | QDir::NoDotAndDotDot;
constexpr int tagLength = 16;
/// Holders keep the lock for one small write; longer means that one of them hangs.
constexpr std::chrono::milliseconds lockLimit(5000);

} // namespace

QString DraftFolder::fileName(const QString &account, const QString &id) const {
    // A list in JSON, so that no account and conversation together look like another pair.
    QList<QString> key{account, id};
    if (!m_scope.isEmpty())
        key.push_front(m_scope);
    return digestOf(Json::encode(key)) + suffix;
}

QString DraftFolder::tagOf(const QString &account) const {
    return u'.' + digestOf(Json::encode(QList<QString>{m_scope, account})).first(tagLength) + u'.';
}

DraftFolder::Failure DraftFolder::failureOf(const AtomicFile::Error &error) {
    switch (error.code) {
    case EFBIG:
    case ELOOP: // a symbolic link
    case EPERM: // somebody else's
    case EISDIR:
    case EINVAL: // a pipe, a device
        return Failure::unreadable;
    default:
        return Failure::storage;
    }
}

DraftFolder::Outcome<QString> DraftFolder::folder() const {
    const auto folder = m_support.folder(m_name);
    if (!folder)
        return std::unexpected(Failure::storage);
    const QByteArray path = QFile::encodeName(*folder);
    struct stat status = {};
    if (::stat(path.constData(), &status) == 0 && (status.st_mode & (S_IRWXG | S_IRWXO)))
        (void)::chmod(path.constData(), S_IRWXU);
    return *folder;
}

DraftFolder::Outcome<QString> DraftFolder::path(const QString &account, const QString &id) const {
    const auto folder = this->folder();
    if (!folder)
        return std::unexpected(folder.error());
    return *folder + u'/' + fileName(account, id);
}

DraftFolder::Outcome<FileLock> DraftFolder::hold() const {
    const auto folder = this->folder();
    if (!folder)
        return std::unexpected(folder.error());
    auto lock = FileLock::hold(*folder + u"/.lock"_s, lockLimit);
    if (lock)
        return *std::move(lock);
    qCWarning(logConversation) << "the drafts cannot be locked:" << lock.error().step << lock.error().reason;
    return std::unexpected(Failure::storage);
}

DraftFolder::Outcome<DraftFolder::Files> DraftFolder::files(const QString &account) const {
    const auto folder = this->folder();
    if (!folder || !QDir(*folder).isReadable())
        return std::unexpected(Failure::storage);
    // Whoever holds the lock is the only writer: what lies beside was left by one that was killed.
    if (const auto lock = FileLock::hold(*folder + u"/.lock"_s, {}))
        AtomicFile::sweep(*folder);
    const QDir dir(*folder);
    Files files;
    for (const QString &name : dir.entryList({u'*' + tagOf(account) + u'*' + asideSuffix}, allFiles))
        files.aside.push_back(dir.filePath(name));
    for (const QString &name : dir.entryList({u'*' + suffix}, allFiles))
        files.records.push_back(dir.filePath(name));
    return files;
}

bool DraftFolder::moveAside(const QString &path, const QString &account) const {
    const QString aside =
        path.chopped(suffix.size()) + tagOf(account) + QUuid::createUuid().toString(QUuid::Id128) + asideSuffix;
    const bool moved = AtomicFile::moveAside(path, aside).has_value();
    qCWarning(logConversation) << "a draft could not be read and was kept aside:" << moved;
    return moved;
}

} // namespace lmp
