#include "platform/SecretService.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QMap>

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

using Attributes = QMap<QString, QString>;

/// The Plasma desktop has a wallet of its own, which the library asks before all else.
bool hasOtherWallet() {
    return qEnvironmentVariableIsSet("KDE_FULL_SESSION") ||
           qEnvironmentVariable("XDG_CURRENT_DESKTOP").contains("KDE"_L1, Qt::CaseInsensitive);
}

} // namespace

bool SecretService::lacks(const QString &service, const QString &account) {
    if (hasOtherWallet())
        return false;
    qDBusRegisterMetaType<Attributes>();
    auto search = QDBusMessage::createMethodCall(u"org.freedesktop.secrets"_s, u"/org/freedesktop/secrets"_s,
                                                 u"org.freedesktop.Secret.Service"_s, u"SearchItems"_s);
    search << QVariant::fromValue(Attributes{{u"user"_s, account}, {u"server"_s, service}});
    const QDBusMessage answer = QDBusConnection::sessionBus().call(search);
    if (answer.type() != QDBusMessage::ReplyMessage || answer.signature() != "aoao"_L1)
        return false;
    const auto isEmpty = [](const QVariant &items) {
        return qdbus_cast<QList<QDBusObjectPath>>(items).isEmpty();
    };
    return std::ranges::all_of(answer.arguments(), isEmpty);
}

} // namespace lmp
