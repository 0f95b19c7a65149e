#include "platform/SecretService.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QFile>
#include <QMap>

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

using Attributes = QMap<QString, QString>;

/// Longest wait in milliseconds: the library is asked after it, and a person who waits is told after 2.5 s.
constexpr int patience = 1000;

/// Whether the library would look here. The Plasma desktop has a wallet of its own, and libsecret goes by a file or by
/// a portal where it is told to or finds itself shut in.
bool isWhereTheLibraryLooks() {
    for (const char *name :
         {"SECRET_BACKEND", "SECRET_SERVICE_BUS_NAME", "SNAP_NAME", "KDE_FULL_SESSION", "KDE_SESSION_VERSION"}) {
        if (qEnvironmentVariableIsSet(name))
            return false;
    }
    for (const char *name : {"XDG_CURRENT_DESKTOP", "DESKTOP_SESSION"}) {
        const QString desktop = qEnvironmentVariable(name);
        if (desktop.contains("kde"_L1, Qt::CaseInsensitive) || desktop.contains("plasma"_L1, Qt::CaseInsensitive))
            return false;
    }
    return !QFile::exists(u"/.flatpak-info"_s);
}

} // namespace

bool SecretService::lacks(const QString &service, const QString &account) {
    if (!isWhereTheLibraryLooks())
        return false;
    qDBusRegisterMetaType<Attributes>();
    auto search = QDBusMessage::createMethodCall(u"org.freedesktop.secrets"_s, u"/org/freedesktop/secrets"_s,
                                                 u"org.freedesktop.Secret.Service"_s, u"SearchItems"_s);
    search << QVariant::fromValue(Attributes{{u"user"_s, account}, {u"server"_s, service}});
    const QDBusMessage answer = QDBusConnection::sessionBus().call(search, QDBus::Block, patience);
    if (answer.type() != QDBusMessage::ReplyMessage || answer.signature() != "aoao"_L1)
        return false;
    const auto isEmpty = [](const QVariant &items) {
        return qdbus_cast<QList<QDBusObjectPath>>(items).isEmpty();
    };
    return std::ranges::all_of(answer.arguments(), isEmpty);
}

} // namespace lmp
