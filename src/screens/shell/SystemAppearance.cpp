#include "screens/shell/SystemAppearance.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

#ifdef Q_OS_MACOS
#include <CoreFoundation/CoreFoundation.h>
#else
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QFile>
#endif

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

#ifndef Q_OS_MACOS
const QString service = u"org.freedesktop.portal.Desktop"_s;
const QString path = u"/org/freedesktop/portal/desktop"_s;
const QString interface = u"org.freedesktop.portal.Settings"_s;

const QString appearance = u"org.freedesktop.appearance"_s;
const QString gnome = u"org.gnome.desktop.interface"_s;

/// Where there is no bus the library would start one of its own, on which no desktop listens.
bool hasSessionBus() {
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS") ||
           (!runtime.isEmpty() && QFile::exists(runtime + u"/bus"_s));
}
#endif

} // namespace

SystemAppearance::SystemAppearance(QObject *parent)
    : QObject(parent) {
    qGuiApp->installEventFilter(this);
}

bool SystemAppearance::dark() const {
    if (m_scheme != Scheme::Unsaid)
        return m_scheme == Scheme::Dark;
    const QPalette palette = QGuiApplication::palette();
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

bool SystemAppearance::eventFilter(QObject *watched, QEvent *event) {
    if (watched == qGuiApp && event->type() == QEvent::ApplicationPaletteChange)
        Q_EMIT changed();
    return QObject::eventFilter(watched, event);
}

#ifdef Q_OS_MACOS

void SystemAppearance::follow() {
    // The palette follows dark mode by itself; the wish for less motion is the person's own setting.
    Boolean exists = false;
    const Boolean reduce =
        CFPreferencesGetAppBooleanValue(CFSTR("reduceMotion"), CFSTR("com.apple.universalaccess"), &exists);
    m_motionReduced = exists && reduce;
    Q_EMIT changed();
}

void SystemAppearance::onSettingChanged(const QDBusMessage &) {}
void SystemAppearance::ask(const QString &, const QString &) {}
void SystemAppearance::take(const QString &, const QString &, const QVariant &) {}

#else

void SystemAppearance::follow() {
    if (!hasSessionBus())
        return;
    QDBusConnection::sessionBus().connect(service, path, interface, u"SettingChanged"_s, this,
                                          SLOT(onSettingChanged(QDBusMessage)));
    ask(appearance, u"color-scheme"_s);
    ask(appearance, u"reduced-motion"_s);
    ask(gnome, u"enable-animations"_s);
}

void SystemAppearance::ask(const QString &group, const QString &key) {
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, u"Read"_s);
    message << group << key;
    auto *call = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, group, key, call] {
        call->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *call;
        // A desktop without the setting answers with an error: it asks for nothing.
        if (reply.isValid())
            take(group, key, reply.value().variant());
    });
}

void SystemAppearance::onSettingChanged(const QDBusMessage &message) {
    const QVariantList said = message.arguments();
    if (said.size() == 3)
        take(said[0].toString(), said[1].toString(), said[2]);
}

void SystemAppearance::take(const QString &group, const QString &key, const QVariant &value) {
    // `Read` wraps its answer once more than the signal does.
    const QVariant plain = value.canConvert<QDBusVariant>() ? value.value<QDBusVariant>().variant() : value;
    if (group == appearance && key == u"color-scheme"_s)
        m_scheme = plain.toUInt() == 1 ? Scheme::Dark : plain.toUInt() == 2 ? Scheme::Light : Scheme::Unsaid;
    else if (group == appearance && key == u"reduced-motion"_s)
        m_motionReduced = plain.toUInt() == 1;
    else if (group == gnome && key == u"enable-animations"_s)
        m_animationsOff = !plain.toBool();
    else
        return;
    Q_EMIT changed();
}

#endif

} // namespace lmp
