#include "platform/ApplicationSupport.h"

#include "platform/AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

namespace lmp {

using namespace Qt::StringLiterals;

ApplicationSupport::ApplicationSupport(QString profile)
    : m_profile(std::move(profile))
    , m_root(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Lumenpair"_s) {
    if (!m_profile.isEmpty())
        m_root += u"/Profiles/"_s + m_profile;
}

ApplicationSupport ApplicationSupport::at(QString root) {
    ApplicationSupport support;
    support.m_root = std::move(root);
    return support;
}

std::optional<QString> ApplicationSupport::folder(const QString &relative) const {
    const QString path = relative.isEmpty() ? m_root : m_root + u'/' + relative;
    // mkdir() with the mode at once: a folder made readable and closed afterwards was open for a moment.
    QString sofar;
    for (const QString &piece : QDir::cleanPath(path).split(u'/')) {
        sofar += piece.isEmpty() ? QString() : u'/' + piece;
        if (sofar.isEmpty() || QFile::exists(sofar) || ::mkdir(QFile::encodeName(sofar).constData(), S_IRWXU) != 0)
            continue;
        // A file in a folder that a pulled plug takes away is as good as none.
        if (!AtomicFile::flushFolder(QFileInfo(sofar).path())) {
            ::rmdir(QFile::encodeName(sofar).constData());
            return std::nullopt;
        }
    }
    return QDir(path).exists() ? std::optional(path) : std::nullopt;
}

bool ApplicationSupport::isProfileName(const QString &name) {
    return !name.isEmpty() && name.size() <= 64 && std::ranges::all_of(name, [](QChar c) {
        return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') || c == u'-' ||
               c == u'_';
    });
}

} // namespace lmp
