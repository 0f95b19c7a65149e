#include "core/CapabilityStore.h"

#include "support/Await.h"
#include "support/StubServer.h"

#include <QPointer>

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;

class CapabilityStoreTest : public ::testing::Test {
protected:
    CapabilityStoreTest() {
        QObject::connect(&store, &CapabilityStore::changed, [this] { ++changes; });
    }
    static QByteArray table(int version, const QByteArray &features) {
        return R"({"platform":"macos","version":)" + QByteArray::number(version) + R"(,"features":[)" + features + "]}";
    }
    void answer(int status, const QByteArray &body) {
        server.on("/api/app/capabilities", StubServer::reply(status, body));
        await(store.refresh());
    }

    StubServer server;
    CapabilityStore store{APIClient(server.url(u"/api"_s), {})};
    int changes = 0;
};

TEST_F(CapabilityStoreTest, AnotherVersionReplacesTheTableAndNothingElseDoes) {
    const QByteArray voice = R"({"id":"voice","label":"语音房","nav":"social","level":"degraded","note":"人少"})";
    const QByteArray posts = R"({"id":"posts","label":"动态","level":"none"})";
    EXPECT_EQ(store.version(), 0);
    EXPECT_FALSE(store.lookup(u"voice"_s));

    answer(200, table(3, voice + "," + posts));
    EXPECT_EQ(server.requests.back().path, "/api/app/capabilities?platform=macos");
    EXPECT_EQ(server.requests.back().method, "GET");
    const FeatureCapability first{u"voice"_s, u"语音房"_s, u"social"_s, CapabilityLevel::degraded, u"人少"_s};
    EXPECT_EQ(store.lookup(u"voice"_s), first);
    EXPECT_EQ(store.lookup(u"posts"_s)->note, std::nullopt);
    EXPECT_FALSE(store.lookup(u"orgs"_s));
    EXPECT_EQ(changes, 1);

    // The same version, and every kind of failure.
    for (const auto &[status, body] : std::initializer_list<std::pair<int, QByteArray>>{
             {200, table(3, posts)},
             {500, "{}"},
             {401, "{}"},
             {200, "<html>"},
             {200, table(4, R"({"id":"voice","label":"x","level":"splendid"})")},
         }) {
        answer(status, body);
        EXPECT_EQ(store.version(), 3) << body.constData();
        EXPECT_EQ(store.lookup(u"voice"_s), first) << body.constData();
        EXPECT_EQ(changes, 1) << body.constData();
    }

    answer(200, table(2, posts));
    EXPECT_EQ(store.version(), 2) << "lower is another one, too";
    EXPECT_FALSE(store.lookup(u"voice"_s));
    EXPECT_EQ(changes, 2);
}

TEST_F(CapabilityStoreTest, ALateAnswerDoesNotReplaceALaterOne) {
    QPointer<QTcpSocket> held;
    server.on("/api/app/capabilities", [&](const auto &, QTcpSocket &socket) { held = &socket; });
    auto slow = store.refresh();
    ASSERT_TRUE(eventually([&] { return held; }));
    answer(200, table(7, {}));
    held->write(StubServer::message(200, table(6, {})));
    await(std::move(slow));
    EXPECT_EQ(store.version(), 7);
}

TEST_F(CapabilityStoreTest, ScreensThatAskAtTheSameTimeAskOnce) {
    QPointer<QTcpSocket> held;
    server.on("/api/app/capabilities", [&](const auto &, QTcpSocket &socket) { held = &socket; });
    store.ask();
    store.ask();
    EXPECT_TRUE(store.asking());
    ASSERT_TRUE(eventually([&] { return held; }));
    held->write(StubServer::message(503, {}));
    EXPECT_TRUE(eventually([&] { return !store.asking(); }));
    EXPECT_EQ(server.requests.size(), 1u);
    server.on("/api/app/capabilities", StubServer::reply(200, table(7, {})));
    store.ask();
    EXPECT_TRUE(eventually([&] { return store.version() == 7; })) << "a failure is not the last word";
}

} // namespace lmp
