// Run by keyring.sh, which makes the session each of these needs and the order in which they come.
#include "platform/SecretService.h"
#include "platform/SystemKeychain.h"

#include "support/Await.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QElapsedTimer>
#include <QFile>

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;

class Keyring : public ::testing::Test {
protected:
    const QString service = u"com.tolvey.quillet.auth"_s;
    const QString account = u"app-token#测试"_s;
    SystemKeychain keychain;

    std::optional<QString> stored() {
        const auto found = await(keychain.read(service, account));
        EXPECT_TRUE(found) << found.error().reason.toStdString();
        return found.value_or(u"(error)"_s);
    }
};

TEST_F(Keyring, StartsEmpty) {
    EXPECT_EQ(stored(), std::nullopt);
    QFile maps(u"/proc/self/maps"_s);
    ASSERT_TRUE(maps.open(QIODevice::ReadOnly));
    EXPECT_FALSE(maps.readAll().contains("libsecret-1")) << "to hear that there is nothing takes no library";
    EXPECT_TRUE(await(keychain.remove(service, account))) << "what is not there is removed";
}

TEST_F(Keyring, Writes) {
    const auto written = await(keychain.write(service, account, u"token-one \"你🙂\n"_s));
    ASSERT_TRUE(written) << written.error().reason.toStdString();
    EXPECT_EQ(await(keychain.read(service, u"app-token"_s)).value(), std::nullopt) << "accounts are kept apart";
    EXPECT_EQ(await(keychain.read(u"other"_s, account)).value(), std::nullopt) << "and services";
}

TEST_F(Keyring, ReadsBackAndReplaces) {
    EXPECT_EQ(stored(), u"token-one \"你🙂\n"_s);
    ASSERT_TRUE(await(keychain.write(service, account, u"token-two"_s)));
    EXPECT_EQ(stored(), u"token-two"_s);
}

TEST_F(Keyring, ReadsTheNewOneAndRemoves) {
    EXPECT_EQ(stored(), u"token-two"_s);
    ASSERT_TRUE(await(keychain.remove(service, account)));
    EXPECT_EQ(stored(), std::nullopt);
}

TEST_F(Keyring, ReadsBehindWhatIsUnderWay) {
    auto writing = keychain.write(service, account, u"token-one"_s);
    EXPECT_EQ(stored(), u"token-one"_s);
    EXPECT_TRUE(await(std::move(writing)));
    auto removing = keychain.remove(service, account);
    EXPECT_EQ(stored(), std::nullopt);
    EXPECT_TRUE(await(std::move(removing)));
}

TEST_F(Keyring, IsAskedWhereItWasWritten) {
    // To a file of its own, whatever the bus says.
    ASSERT_TRUE(await(keychain.write(service, account, u"token-file"_s)));
    EXPECT_FALSE(SecretService::lacks(service, account));
    EXPECT_EQ(stored(), u"token-file"_s);
}

TEST_F(Keyring, IsNotEmptyForBeingLocked) {
    ASSERT_TRUE(SecretService::lacks(service, u"nobody"_s)) << "it answers";
    EXPECT_FALSE(SecretService::lacks(service, account));
}

TEST_F(Keyring, UnavailableWithoutABus) {
    QElapsedTimer timer;
    timer.start();
    const auto read = await(keychain.read(service, account));
    const auto written = await(keychain.write(service, account, u"token-one"_s));
    const auto removed = await(keychain.remove(service, account));
    EXPECT_TRUE(!read && read.error().unavailable);
    EXPECT_TRUE(!written && written.error().unavailable);
    EXPECT_TRUE(!removed && removed.error().unavailable);
    EXPECT_LT(timer.elapsed(), 2000);
}

TEST_F(Keyring, UnavailableWithoutAService) {
    const auto read = await(keychain.read(service, account));
    const auto written = await(keychain.write(service, account, u"token-one"_s));
    EXPECT_TRUE(!read && read.error().unavailable);
    EXPECT_TRUE(!written && written.error().unavailable);
}

namespace {

/// Owns the Secret Service's name and answers nothing.
class SilentService : public QDBusVirtualObject {
public:
    int asked = 0;
    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &) override {
        message.setDelayedReply(true);
        ++asked;
        return true;
    }
};

} // namespace

TEST_F(Keyring, HangingServiceHoldsUpNothing) {
    SilentService silent;
    // Of its own: a call to a name of the same connection never reaches the bus.
    auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"silent"_s);
    ASSERT_TRUE(bus.isConnected()) << bus.lastError().message().toStdString();
    ASSERT_TRUE(bus.registerVirtualObject(u"/org/freedesktop/secrets"_s, &silent, QDBusConnection::SubPath));
    ASSERT_TRUE(bus.registerService(u"org.freedesktop.secrets"_s));
    QElapsedTimer timer;
    timer.start();
    auto reading = keychain.read(service, account);
    EXPECT_LT(timer.elapsed(), 500) << "asking does not block";
    EXPECT_TRUE(eventually([&] { return silent.asked > 1; })) << "the bus first, then by the library";
    EXPECT_LT(timer.elapsed(), 2500) << "before the person is told that it takes long";
    settle();
    EXPECT_FALSE(reading.isReady());
    bus.unregisterObject(u"/org/freedesktop/secrets"_s, QDBusConnection::UnregisterTree);
    // That this process ends now is what the script checks.
}

} // namespace lmp
