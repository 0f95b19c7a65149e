#include "screens/shell/SystemAppearance.h"
#include "support/Await.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QGuiApplication>
#include <QHash>
#include <QProcess>
#include <QStandardPaths>

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

const QString service = u"org.freedesktop.portal.Desktop"_s;
const QString path = u"/org/freedesktop/portal/desktop"_s;
const QString interface = u"org.freedesktop.portal.Settings"_s;
const QString appearance = u"org.freedesktop.appearance"_s;

/// A desktop's settings, on a connection of its own as if it were another program.
class Portal : public QDBusVirtualObject {
public:
    Portal(const QString &bus, const QString &name)
        : m_name(name)
        , m_connection(QDBusConnection::connectToBus(bus, name)) {
        m_connection.registerVirtualObject(path, this);
        m_connection.registerService(service);
    }
    ~Portal() override { QDBusConnection::disconnectFromBus(m_name); }

    /// Sets a value without a word to anybody.
    void have(const QString &group, const QString &key, const QVariant &value) { m_values[group + key] = value; }
    void change(const QString &group, const QString &key, const QVariant &value) {
        auto signal = QDBusMessage::createSignal(path, interface, u"SettingChanged"_s);
        signal << group << key << QVariant::fromValue(QDBusVariant(value));
        m_connection.send(signal);
    }

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override {
        const auto value =
            m_values.constFind(message.arguments().value(0).toString() + message.arguments().value(1).toString());
        if (message.member() != u"Read"_s)
            return false;
        // The answer is wrapped twice, as real ones are.
        const auto inner = value == m_values.cend() ? QVariant() : QVariant::fromValue(QDBusVariant(*value));
        connection.send(value == m_values.cend()
                            ? message.createErrorReply(u"org.freedesktop.portal.Error.NotFound"_s, u"not there"_s)
                            : message.createReply(QVariant::fromValue(QDBusVariant(inner))));
        return true;
    }

private:
    QString m_name;
    QDBusConnection m_connection;
    QHash<QString, QVariant> m_values;
};

} // namespace

TEST(SystemAppearanceTest, FollowsThePortalLiveAndAfterItsRestart) {
    const QString daemon = QStandardPaths::findExecutable(u"dbus-daemon"_s);
    if (daemon.isEmpty())
        GTEST_SKIP() << "dbus-daemon is not installed";
    QProcess bus;
    bus.start(daemon, {u"--session"_s, u"--nofork"_s, u"--nopidfile"_s, u"--print-address=1"_s});
    ASSERT_TRUE(bus.waitForStarted());
    ASSERT_TRUE(eventually([&] { return bus.canReadLine(); }));
    const QString address = QString::fromUtf8(bus.readLine()).trimmed();
    qputenv("DBUS_SESSION_BUS_ADDRESS", address.toUtf8());

    auto portal = std::make_unique<Portal>(address, u"first"_s);
    portal->have(appearance, u"color-scheme"_s, 1u);
    portal->have(u"org.gnome.desktop.interface"_s, u"enable-animations"_s, false);
    SystemAppearance system;
    system.follow();
    EXPECT_TRUE(eventually([&] { return system.dark() && system.reducedMotion(); }));

    portal->change(appearance, u"color-scheme"_s, 2u);
    EXPECT_TRUE(eventually([&] { return !system.dark(); }));
    portal->change(u"org.gnome.desktop.interface"_s, u"enable-animations"_s, true);
    EXPECT_TRUE(eventually([&] { return !system.reducedMotion(); }));
    // Another group has keys of the same names.
    portal->change(u"org.example.other"_s, u"color-scheme"_s, 1u);
    portal->change(appearance, u"reduced-motion"_s, 1u);
    EXPECT_TRUE(eventually([&] { return system.reducedMotion(); }));
    EXPECT_FALSE(system.dark());

    portal.reset();
    portal = std::make_unique<Portal>(address, u"second"_s);
    // What has the name now is heard of when the bus says so.
    EXPECT_TRUE(eventually([&] {
        portal->change(appearance, u"color-scheme"_s, 1u);
        return system.dark();
    }));
    portal.reset();
    QDBusConnection::disconnectFromBus(QDBusConnection::sessionBus().name());
    bus.terminate();
    EXPECT_TRUE(bus.waitForFinished());
}

} // namespace lmp

int main(int argc, char **argv) {
    QGuiApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
