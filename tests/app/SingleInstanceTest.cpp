#include "app/SingleInstance.h"

#include "support/Await.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocalSocket>
#include <QTemporaryDir>
#include <QThread>
#include <QtEndian>

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Role = SingleInstance::Role;

class SingleInstanceTest : public ::testing::Test {
protected:
    /// A start that is over when this returns, on a thread of its own as if in a process of its own.
    Role start(const QStringList &arguments, const QString &profile = {},
               std::chrono::milliseconds patience = SingleInstance::patience, bool firstRuns = true,
               const std::optional<QString> &site = {}) {
        Role role = Role::First;
        std::atomic<bool> over = false;
        const std::unique_ptr<QThread> thread(QThread::create([&] {
            SingleInstance second(profile, folder.path());
            role = second.claim({arguments, u"token"_s, site}, patience);
            over = true;
        }));
        thread->start();
        if (firstRuns)
            EXPECT_TRUE(eventually([&] { return over.load(); }));
        thread->wait();
        return role;
    }
    void listenTo(SingleInstance &first) {
        QObject::connect(&first, &SingleInstance::handedOver,
                         [this](const SingleInstance::Handover &handover) { handovers.push_back(handover); });
    }
    QString file(const QString &ending) const {
        return folder.filePath(
            QDir(folder.path()).entryList({u"*"_s + ending}, QDir::AllEntries | QDir::System).value(0));
    }
    static mode_t mode(const QString &path) {
        struct stat found = {};
        return ::stat(QFile::encodeName(path).constData(), &found) == 0 ? found.st_mode & 0777 : 0;
    }

    QTemporaryDir folder;
    std::vector<SingleInstance::Handover> handovers;
};

TEST_F(SingleInstanceTest, ASecondStartHandsOverAndLeaves) {
    {
        SingleInstance first({}, folder.path());
        listenTo(first);
        EXPECT_EQ(first.claim({.arguments = {}, .activationToken = {}, .site = u"http://a"_s}), Role::First);
        EXPECT_EQ(mode(file(u".sock"_s)), mode_t(0600));
        EXPECT_EQ(mode(file(u".lock"_s)), mode_t(0600));
        EXPECT_EQ(start({u"lumenpair://me"_s, u"--now"_s}), Role::HandedOver);
        ASSERT_EQ(handovers.size(), 1u);
        EXPECT_EQ(handovers[0].arguments, (QStringList{u"lumenpair://me"_s, u"--now"_s}));
        EXPECT_EQ(handovers[0].activationToken, u"token"_s);
        EXPECT_EQ(start({u"x"_s}, u"work"_s), Role::First) << "another profile is another program";
        EXPECT_EQ(handovers.size(), 1u);
        // Whatever is passed on the command line, the first one is asked to show itself.
        EXPECT_EQ(start({QString(5000, u'x'), u"y"_s}), Role::HandedOver);
        EXPECT_EQ(handovers.back().arguments, (QStringList{QString(4096, u'x'), u"y"_s}))
            << "too long to be followed, not too long to be told of";
        EXPECT_EQ(start(QStringList(200, QString(4000, u'字'))), Role::HandedOver);
        EXPECT_EQ(handovers.size(), 3u);
        EXPECT_EQ(start({}, {}, SingleInstance::patience, true, u"http://b"_s), Role::OtherSite);
        EXPECT_EQ(start({}, {}, SingleInstance::patience, true, u"http://a"_s), Role::HandedOver);
        first.release();
        EXPECT_EQ(start({}), Role::First) << "the first one is on its way out";
    }
    EXPECT_EQ(start({}), Role::First);
}

TEST_F(SingleInstanceTest, StartsAtTheSameInstantLeaveOne) {
    std::atomic<int> running = 6;
    std::atomic<int> firsts = 0;
    std::atomic<int> taken = 0;
    std::vector<std::unique_ptr<QThread>> threads;
    for (int i = running; i > 0; --i) {
        threads.emplace_back(QThread::create([&] {
            SingleInstance one({}, folder.path());
            QObject::connect(&one, &SingleInstance::handedOver, [&] { ++taken; });
            const auto role = one.claim({{u"x"_s}, {}}, 10s);
            --running;
            if (role != Role::First)
                return;
            ++firsts;
            EXPECT_TRUE(eventually([&] { return running == 0; }));
        }));
    }
    for (const auto &thread : threads)
        thread->start();
    for (const auto &thread : threads)
        thread->wait();
    EXPECT_EQ(firsts, 1);
    EXPECT_EQ(taken, 5);
}

TEST_F(SingleInstanceTest, WhatAKilledOneLeftIsInNobodysWay) {
    {
        SingleInstance first({}, folder.path());
        ASSERT_EQ(first.claim({}), Role::First);
    }
    // A socket that nobody reads, where the killed one had its own.
    const QByteArray path = QFile::encodeName(file(u".lock"_s)).replace(".lock", ".sock");
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.constData(), sizeof address.sun_path - 1);
    const int dead = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(::bind(dead, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    ::close(dead);
    SingleInstance next({}, folder.path());
    listenTo(next);
    EXPECT_EQ(next.claim({}), Role::First);
    EXPECT_EQ(start({u"x"_s}), Role::HandedOver);
    EXPECT_EQ(handovers.size(), 1u);
}

TEST_F(SingleInstanceTest, AHungFirstOneDoesNotHangTheSecond) {
    SingleInstance first({}, folder.path());
    listenTo(first);
    ASSERT_EQ(first.claim({}), Role::First);
    EXPECT_EQ(start({u"x"_s}, {}, 50ms, false), Role::Unresponsive);
    // Alive again, it still serves the next.
    EXPECT_EQ(start({u"y"_s}), Role::HandedOver);
    EXPECT_EQ(handovers.back().arguments, QStringList{u"y"_s});
}

TEST_F(SingleInstanceTest, NonsenseOnTheSocketIsDropped) {
    SingleInstance first({}, folder.path());
    listenTo(first);
    ASSERT_EQ(first.claim({}), Role::First);
    const auto frame = [](quint32 length, const QByteArray &body) {
        QByteArray bytes(4, '\0');
        qToBigEndian(length, bytes.data());
        return bytes + body;
    };
    for (const QByteArray &bytes : {frame(0xffffffff, "x"), frame(SingleInstance::longestMessage + 1, {}),
                                    frame(5, "<html"), frame(2, "{}"), frame(0, {})}) {
        QLocalSocket socket;
        socket.connectToServer(file(u".sock"_s));
        ASSERT_TRUE(eventually([&] { return socket.state() == QLocalSocket::ConnectedState; }));
        socket.write(bytes);
        EXPECT_TRUE(eventually([&] { return socket.state() == QLocalSocket::UnconnectedState; }));
        EXPECT_TRUE(socket.readAll().isEmpty());
    }
    // One that says nothing keeps nobody else waiting.
    QLocalSocket silent;
    silent.connectToServer(file(u".sock"_s));
    silent.write(QByteArray(2, '\0'));
    EXPECT_EQ(start({u"x"_s}), Role::HandedOver);
    EXPECT_EQ(handovers.size(), 1u);
}

TEST_F(SingleInstanceTest, WithoutAPlaceForItTheProgramStillRuns) {
    SingleInstance one({}, folder.filePath(u"missing"_s));
    EXPECT_EQ(one.claim({}), Role::First);
}

} // namespace lmp
