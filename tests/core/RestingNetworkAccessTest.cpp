#include "core/RestingNetworkAccess.h"

#include "support/Await.h"
#include "support/StubServer.h"

#include <QDir>
#include <QNetworkReply>
#include <QPointer>
#include <QSet>
#include <QTimer>

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// The ids of this process's threads. Those of other tests may end at any time.
QSet<QString> threads() {
    const auto ids = QDir(u"/proc/self/task"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    return {ids.begin(), ids.end()};
}

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
    for (int round = 0; round < 2; ++round) {
        const auto before = threads();
        EXPECT_EQ(get(manager, server.url(u"/"_s)), "one");
        EXPECT_EQ(get(manager, server.url(u"/slow"_s)), "late");
#ifdef Q_OS_LINUX
        const auto its = threads() - before;
        EXPECT_FALSE(its.isEmpty());
        EXPECT_TRUE(eventually([&] { return !threads().intersects(its); }));
#endif
    }
}

TEST(RestingNetworkAccessTest, ItEndsWithRequestsUnderWay) {
    StubServer server;
    server.on("/", [](const StubServer::Request &, QTcpSocket &) {});
    auto manager = std::make_unique<RestingNetworkAccess>(0ms);
    const QPointer reply(manager->get(QNetworkRequest(server.url(u"/"_s))));
    EXPECT_TRUE(eventually([&] { return !server.requests.empty(); }));
    manager.reset();
    EXPECT_FALSE(reply);
    settle();
}

} // namespace lmp
