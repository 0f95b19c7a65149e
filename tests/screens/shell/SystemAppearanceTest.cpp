#include "screens/shell/SystemAppearance.h"
#include "support/Await.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QGuiApplication>

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;

/// A desktop's settings portal that says what the test makes it say.
class Portal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")
public:
    QVariantMap settings;
    /// The desktop's side of the bus.
    static QDBusConnection bus() { return QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"desktop"_s); }

public Q_SLOTS:
    QDBusVariant Read(const QString &group, const QString &key, const QDBusMessage &message) {
        const QVariant value = settings.value(group + u'/' + key);
        if (!value.isValid()) {
            message.setDelayedReply(true);
            bus().send(message.createErrorReply(u"org.freedesktop.portal.Error.NotFound"_s, u"no such setting"_s));
        }
        // Answers of `Read` are wrapped twice.
        return QDBusVariant(QVariant::fromValue(QDBusVariant(value)));
    }

Q_SIGNALS:
    void SettingChanged(const QString &group, const QString &key, const QDBusVariant &value);
};

TEST(SystemAppearanceTest, FollowsTheDesktop) {
    auto bus = Portal::bus();
    if (!bus.isConnected())
        GTEST_SKIP() << "no session bus";
    SystemAppearance early;
    early.follow(); // nobody answers
    Portal portal;
    portal.settings = {{u"org.freedesktop.appearance/color-scheme"_s, 1u},
                       {u"org.gnome.desktop.interface/enable-animations"_s, false}};
    ASSERT_TRUE(bus.registerObject(u"/org/freedesktop/portal/desktop"_s, &portal,
                                   QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals));
    ASSERT_TRUE(bus.registerService(u"org.freedesktop.portal.Desktop"_s));

    SystemAppearance appearance;
    EXPECT_FALSE(appearance.dark());
    appearance.follow();
    EXPECT_TRUE(eventually([&] { return appearance.dark() && appearance.reducedMotion(); }));
    Q_EMIT portal.SettingChanged(u"org.freedesktop.appearance"_s, u"color-scheme"_s, QDBusVariant(2u));
    Q_EMIT portal.SettingChanged(u"org.gnome.desktop.interface"_s, u"enable-animations"_s, QDBusVariant(true));
    EXPECT_TRUE(eventually([&] { return !appearance.dark() && !appearance.reducedMotion(); }));
    // One that was there before the portal hears of it all the same.
    Q_EMIT portal.SettingChanged(u"org.freedesktop.appearance"_s, u"color-scheme"_s, QDBusVariant(1u));
    EXPECT_TRUE(eventually([&] { return early.dark(); }));
}

} // namespace lmp

#include "SystemAppearanceTest.moc"

int main(int argc, char **argv) {
    QGuiApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
