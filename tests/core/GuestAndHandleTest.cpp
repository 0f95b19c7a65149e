#include "core/GuestTrial.h"
#include "core/HandleSetup.h"

#include "support/Await.h"
#include "support/ManualClock.h"
#include "support/StubServer.h"

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class GuestAndHandleTest : public ::testing::Test {
protected:
    AuthService service() { return AuthService(APIClient(server.url(u"/api"_s), {})); }
    void type(HandleSetup &setup, const QString &input) {
        setup.setInput(input);
        settle();
        clock.advance(250ms);
        settle();
    }

    StubServer server;
    ManualClock clock;
};

TEST_F(GuestAndHandleTest, TrialRunsOut) {
    server.on("/api/app/guest/session", StubServer::reply(200, R"({"guest":{"token":"g","roundsLeft":2}})"));
    server.on("/api/app/guest/chat", StubServer::reply(200, R"({"reply":"嗯","roundsLeft":1})"));
    GuestTrial trial(service());
    await(trial.send(u"早"_s));
    EXPECT_TRUE(server.requests.empty()) << "no trial yet";
    await(trial.open());
    await(trial.open());
    EXPECT_EQ(server.requests.size(), 1u);
    EXPECT_EQ(server.requests[0].body, "{}");
    await(trial.send(u"  "_s));
    await(trial.send(u"你好"_s));
    EXPECT_EQ(server.requests.back().body, R"({"guestToken":"g","message":"你好"})");
    EXPECT_EQ(trial.roundsLeft(), 1);
    EXPECT_FALSE(trial.isExhausted());

    server.on("/api/app/guest/chat", StubServer::reply(500, R"({"reason":"忙"})"));
    await(trial.send(u"在吗"_s));
    EXPECT_EQ(trial.message(), u"忙"_s);
    EXPECT_EQ(trial.turns().size(), 1);
    server.on("/api/app/guest/chat", StubServer::reply(200, R"({"reply":"再见","stardust":"✦","roundsLeft":0})"));
    await(trial.send(u"在吗"_s));
    EXPECT_TRUE(trial.isExhausted());
    EXPECT_EQ(trial.turns().last().reply, u"再见"_s);
    const auto requests = server.requests.size();
    await(trial.send(u"还有吗"_s));
    EXPECT_EQ(server.requests.size(), requests);
}

TEST_F(GuestAndHandleTest, TrialThatDoesNotOpen) {
    struct Case {
        int status; ///< 0 breaks the connection
        QByteArray body;
        QString message;
    };
    for (const auto &[status, body, message] : std::initializer_list<Case>{
             {0, "", u"试聊暂时开不了，稍后再来。"_s},
             {500, "<html>", u"试聊暂时开不了，稍后再来。"_s},
             {503, R"({"reason":"今天的名额用完了"})", u"今天的名额用完了"_s},
         }) {
        server.on("/api/app/guest/session", [=](const StubServer::Request &, QTcpSocket &socket) {
            if (status == 0)
                socket.abort();
            else
                socket.write(StubServer::message(status, body));
        });
        GuestTrial trial(service());
        await(trial.open());
        EXPECT_EQ(trial.message(), message);
        EXPECT_FALSE(trial.isOpen());
        EXPECT_FALSE(trial.isExhausted()) << "nothing to register for yet";
        EXPECT_FALSE(trial.isBusy());
    }
}

TEST_F(GuestAndHandleTest, AnyInputMakesAWholeQuery) {
    server.on("/api/app/handle/check", StubServer::reply(200, R"({"available":true})"));
    struct Case {
        QString input;
        QByteArray query;
    };
    for (const auto &[input, query] : std::initializer_list<Case>{
             {u"lin_1"_s, "lin_1"},
             {u"a&b=c#d?e/f"_s, "a%26b%3Dc%23d%3Fe%2Ff"},
             {u"小 林"_s, "%E5%B0%8F%20%E6%9E%97"},
             {u"100%\r\n"_s, "100%25%0D%0A"},
             {u"a+b\"<>"_s, "a%2Bb%22%3C%3E"},
             {u"\xd83d x"_s, "%3F%20x"},
         }) {
        ASSERT_TRUE(await(service().checkHandle(input))) << query.constData();
        EXPECT_EQ(server.requests.back().path.toStdString(), ("/api/app/handle/check?handle=" + query).toStdString());
    }
}

TEST_F(GuestAndHandleTest, OnlyTheLastInputCounts) {
    QList<QPointer<QTcpSocket>> held;
    server.on("/api/app/handle/check",
              [&](const StubServer::Request &, QTcpSocket &socket) { held.push_back(&socket); });
    HandleSetup setup(service(), clock);
    setup.setInput(u"a"_s);
    setup.setInput(u"ab"_s);
    settle();
    clock.advance(250ms);
    ASSERT_TRUE(eventually([&] { return held.size() == 1; }));
    EXPECT_EQ(server.requests[0].path, "/api/app/handle/check?handle=ab") << "only what was left when typing paused";
    type(setup, u"abc"_s);
    ASSERT_TRUE(eventually([&] { return held.size() == 2; }));
    held[1]->write(StubServer::message(200, R"({"available":false,"reason":"有人用了"})"));
    ASSERT_TRUE(eventually([&] { return setup.check().has_value(); }));
    held[0]->write(StubServer::message(200, R"({"available":true})"));
    server.on("/ping", StubServer::reply(200, "{}"));
    ASSERT_TRUE(await(APIClient(server.url(), {}).request<APIClient::Empty>(u"/ping"_s)));
    settle();
    EXPECT_FALSE(setup.check()->available);
    EXPECT_EQ(setup.check()->reason, u"有人用了"_s);
    EXPECT_FALSE(setup.isChecking());
}

TEST_F(GuestAndHandleTest, SuggestsAndSaves) {
    server.on("/api/app/handle/suggest", StubServer::reply(200, R"({"suggestions":["x","y"],"current":"z"})"));
    server.on("/api/app/handle/check", StubServer::reply(500, ""));
    HandleSetup setup(service(), clock);
    await(setup.loadSuggestions());
    EXPECT_EQ(setup.suggestions(), (QList<QString>{u"x"_s, u"y"_s}));
    EXPECT_EQ(setup.current(), u"z"_s);
    await(setup.save());
    EXPECT_EQ(server.requests.size(), 1u) << "nothing to save";
    type(setup, u"x"_s);
    ASSERT_TRUE(eventually([&] { return !setup.isChecking(); }));
    EXPECT_EQ(setup.message(), u"查不了，检查下网络"_s);

    struct Case {
        int status;
        QByteArray body;
        QString message, current;
    };
    for (const auto &[status, body, message, current] : std::initializer_list<Case>{
             {500, "", u"没保存上，再试一次"_s, u"z"_s},
             {409, R"({"error":"handle_taken","reason":"有人用了"})", u"有人用了"_s, u"z"_s},
             {200, R"({"handle":"x","twinHandle":"x.twin"})", u""_s, u"x"_s},
         }) {
        server.on("/api/app/handle", StubServer::reply(status, body));
        await(setup.save());
        EXPECT_EQ(setup.message(), message);
        EXPECT_EQ(setup.current(), current);
        EXPECT_FALSE(setup.isSaving());
    }
    EXPECT_EQ(server.requests.back().body, R"({"handle":"x"})");
}

} // namespace lmp
