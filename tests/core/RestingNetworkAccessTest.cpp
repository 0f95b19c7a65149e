#include "core/RestingNetworkAccess.h"

#include "support/Await.h"
#include "support/StubServer.h"

#include <QDir>
#include <QNetworkReply>
#include <QTimer>

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

QByteArray get(QNetworkAccessManager &manager, const QUrl &url) {
    const std::unique_ptr<QNetworkReply> reply(manager.get(QNetworkRequest(url)));
    EXPECT_TRUE(eventually([&] { return reply->isFinished(); }));
    return reply->readAll();
}

} // namespace

TEST(RestingNetworkAccessTest, ItHoldsItsThreadForNothingButRequests) {
    StubServer server;
    server.on("/", StubServer::reply(200, "one"));
    server.on("/slow", [](const StubServer::Request &request, QTcpSocket &socket) {
        // Long after a manager with nothing to do would have gone to rest.
        QTimer::singleShot(200ms, &socket, [request, &socket] { StubServer::reply(200, "late")(request, socket); });
    });
    RestingNetworkAccess manager(20ms);
    const auto threads = [] {
        return QDir(u"/proc/self/task"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
    };
    for (int round = 0; round < 2; ++round) {
        const auto before = threads();
        EXPECT_EQ(get(manager, server.url(u"/"_s)), "one");
        EXPECT_EQ(get(manager, server.url(u"/slow"_s)), "late");
#ifdef Q_OS_LINUX
        EXPECT_GT(threads(), before);
#endif
        EXPECT_TRUE(eventually([&] { return threads() == before; }));
    }
}

} // namespace lmp
