#include "app/SandboxProcess.h"

#include "support/Await.h"

#include <QTcpSocket>
#include <QTemporaryDir>

#include <csignal>
#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;

TEST(SandboxProcessTest, WhatDiesComesBackAtItsPlace) {
    const QTemporaryDir folder;
    SandboxProcess sandbox(folder.filePath(u"sandbox.sqlite"_s));
    const auto address = sandbox.start();
    ASSERT_TRUE(eventually([&] { return address.isResolved(); }, 20'000));
    const auto url = address.await_resume();
    ASSERT_TRUE(url) << url.error().toStdString();
    const auto answers = [&] {
        QTcpSocket socket;
        socket.connectToHost(url->host(), quint16(url->port()));
        return socket.waitForConnected(1000);
    };
    EXPECT_TRUE(answers());

    const auto *process = sandbox.findChild<QProcess *>();
    const auto killed = pid_t(process->processId());
    ASSERT_EQ(::kill(killed, SIGKILL), 0);
    EXPECT_TRUE(eventually(
        [&] { return process->processId() > 0 && pid_t(process->processId()) != killed && answers(); }, 20'000));
}

} // namespace lmp
