#include "core/AuthStore.h"
#include "core/Telemetry.h"

#include "support/Await.h"
#include "support/FakeKeychain.h"
#include "support/ManualClock.h"
#include "support/MemorySettings.h"
#include "support/StubServer.h"

#include <gtest/gtest.h>

#include <thread>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Phase = AuthStore::Phase;

class AuthStoreTest : public ::testing::Test {
protected:
    static constexpr auto me = "/api/app/auth/me";

    AuthStoreTest() {
        server.on(me, StubServer::reply(200, meBody("u1")));
        server.on("/ping", StubServer::reply(200, "{}"));
    }

    void TearDown() override {
        // What is under way ends through the event loop.
        store.reset();
        settle();
        keychain.release();
        EXPECT_TRUE(eventually([this] { return keychain.isIdle(); }));
    }

    static QByteArray meBody(const QByteArray &id) { return R"({"userInfo":{"id":")" + id + R"("}})"; }
    static AuthResponse answer(const QString &id, const QString &token) { return {{.id = id}, token, u"login"_s}; }

    /// Answers "/app/auth/me" when told to, and not before.
    void holdMe() {
        server.on(me, [this](const StubServer::Request &, QTcpSocket &socket) { held.push_back(&socket); });
    }
    void answerHeld(int status, const QByteArray &body) {
        ASSERT_FALSE(held.isEmpty());
        auto *socket = held.takeFirst().data();
        ASSERT_TRUE(socket);
        socket->write(StubServer::message(status, body, "Connection: close\r\n"));
        socket->disconnectFromHost();
        // Another round trip: by its end the answer has long been dealt with.
        ASSERT_TRUE(await(APIClient(server.url(), {}).request<APIClient::Empty>(u"/ping"_s)));
        settle();
    }
    void pass(std::chrono::milliseconds time) {
        clock.advance(time);
        settle();
    }
    bool requestsReach(size_t count) {
        return eventually([&] { return server.requests.size() == count; });
    }
    bool phaseBecomes(Phase phase) {
        return eventually([&] { return store->phase() == phase; });
    }

    StubServer server;
    ManualClock clock;
    FakeKeychain keychain;
    QList<QPointer<QTcpSocket>> held;
    std::unique_ptr<AuthStore> store = std::make_unique<AuthStore>(server.url(u"/api"_s), keychain, clock);
};

TEST_F(AuthStoreTest, StartsFromTheKeychain) {
    struct Case {
        std::optional<QString> stored;
        int status;
        Phase phase;
        bool kept;
    };
    for (const auto &[stored, status, phase, kept] : std::initializer_list<Case>{
             {std::nullopt, 200, Phase::signedOut, false},
             {u""_s, 200, Phase::signedOut, true},
             {u"tok"_s, 200, Phase::signedIn, true},
             {u"tok"_s, 401, Phase::signedOut, false},
         }) {
        keychain.items.clear();
        if (stored)
            keychain.items.insert(AuthStore::tokenKey, *stored);
        server.on(me, StubServer::reply(status, meBody("u1")));
        server.requests.clear();
        AuthStore fresh(server.url(u"/api"_s), keychain, clock);
        fresh.restore();
        EXPECT_EQ(fresh.phase(), Phase::loading);
        await(fresh.settled());
        EXPECT_EQ(fresh.phase(), phase) << status;
        EXPECT_EQ(fresh.token().has_value(), phase == Phase::signedIn);
        EXPECT_EQ(fresh.accountKey(), phase == Phase::signedIn ? u"u1"_s : u"anonymous"_s);
        EXPECT_TRUE(await(fresh.keychainSettled(1s)));
        EXPECT_EQ(keychain.items.contains(AuthStore::tokenKey), kept) << status;
        if (stored == u"tok"_s) {
            ASSERT_EQ(server.requests.size(), 1u);
            EXPECT_EQ(server.requests[0].headers["x-access-token"], "tok");
        }
    }
}

TEST_F(AuthStoreTest, KeepsTheTokenAfterThreeFailures) {
    keychain.items.insert(AuthStore::tokenKey, u"tok"_s);
    server.on(me, StubServer::reply(503, ""));
    store->restore();
    for (size_t attempt = 1; attempt <= 3; ++attempt) {
        ASSERT_TRUE(requestsReach(attempt));
        const bool last = attempt == 3;
        ASSERT_TRUE(eventually([&] { return last ? store->verificationFailed() : clock.sleepers() == 1; }));
        EXPECT_EQ(store->verifyingGeneration().has_value(), !last);
        pass(1999ms);
        EXPECT_EQ(server.requests.size(), attempt) << "before its time";
        pass(1ms);
    }
    await(store->settled());
    EXPECT_EQ(store->phase(), Phase::loading);
    EXPECT_EQ(store->verificationError()->status, 503);
    EXPECT_EQ(store->token(), u"tok"_s);
    EXPECT_EQ(keychain.items.value(AuthStore::tokenKey), u"tok"_s);

    server.on(me, StubServer::reply(200, meBody("u1")));
    store->retryVerification();
    EXPECT_TRUE(phaseBecomes(Phase::signedIn));
    EXPECT_FALSE(store->verificationFailed());
}

TEST_F(AuthStoreTest, DropsLateVerification) {
    for (const int status : {200, 401, 500}) {
        for (const bool signsInAgain : {true, false}) {
            held.clear();
            keychain.items.insert(AuthStore::tokenKey, u"old"_s);
            holdMe();
            AuthStore fresh(server.url(u"/api"_s), keychain, clock);
            fresh.restore();
            ASSERT_TRUE(eventually([&] { return held.size() == 1; }));
            EXPECT_EQ(fresh.verifyingGeneration(), fresh.authenticationGeneration());
            if (signsInAgain)
                fresh.signIn(answer(u"u2"_s, u"new"_s));
            else
                fresh.signOut();
            answerHeld(status, meBody("u1"));
            EXPECT_EQ(fresh.phase(), signsInAgain ? Phase::signedIn : Phase::signedOut) << status;
            EXPECT_EQ(fresh.token(), signsInAgain ? std::optional(u"new"_s) : std::nullopt) << status;
            EXPECT_EQ(fresh.accountKey(), signsInAgain ? u"u2"_s : u"anonymous"_s);
            EXPECT_FALSE(fresh.verificationFailed());
            EXPECT_TRUE(await(fresh.keychainSettled(1s)));
            EXPECT_EQ(keychain.items.value(AuthStore::tokenKey), signsInAgain ? u"new"_s : QString());
        }
    }
}

TEST_F(AuthStoreTest, SameTokenAgainIsAnotherSignIn) {
    keychain.items.insert(AuthStore::tokenKey, u"tok"_s);
    holdMe();
    store->restore();
    ASSERT_TRUE(eventually([&] { return held.size() == 1; }));
    store->signIn(answer(u"u2"_s, u"tok"_s));
    answerHeld(401, "");
    EXPECT_EQ(store->phase(), Phase::signedIn);
}

TEST_F(AuthStoreTest, WaitsOnASlowKeychainFor20Seconds) {
    keychain.items.insert(AuthStore::tokenKey, u"tok"_s);
    keychain.hang();
    store->restore();
    settle();
    pass(2499ms);
    EXPECT_FALSE(store->waitingOnKeychain());
    pass(1ms);
    EXPECT_TRUE(store->waitingOnKeychain());
    pass(17499ms);
    EXPECT_EQ(store->phase(), Phase::loading);
    pass(1ms);
    EXPECT_EQ(store->phase(), Phase::signedOut);
    EXPECT_FALSE(store->waitingOnKeychain());
    EXPECT_FALSE(store->notice().isEmpty());
    keychain.release();
    ASSERT_TRUE(eventually([&] { return keychain.log == QStringList{u"read"_s}; }));
    settle();
    EXPECT_EQ(store->phase(), Phase::signedOut) << "what comes after the wait waits for the next start";
    EXPECT_FALSE(store->token());
    EXPECT_EQ(keychain.items.value(AuthStore::tokenKey), u"tok"_s);
}

TEST_F(AuthStoreTest, SlowKeychainAnswersInTime) {
    keychain.items.insert(AuthStore::tokenKey, u"tok"_s);
    keychain.hang();
    store->restore();
    settle();
    pass(3s);
    EXPECT_TRUE(store->waitingOnKeychain());
    keychain.release();
    EXPECT_TRUE(phaseBecomes(Phase::signedIn));
    EXPECT_FALSE(store->waitingOnKeychain());
    pass(20s);
    EXPECT_EQ(store->phase(), Phase::signedIn);
}

TEST_F(AuthStoreTest, LateReadLosesToASignIn) {
    keychain.items.insert(AuthStore::tokenKey, u"old"_s);
    keychain.hang();
    store->restore();
    settle();
    pass(3s);
    store->signIn(answer(u"u2"_s, u"new"_s));
    EXPECT_FALSE(store->waitingOnKeychain());
    keychain.release();
    ASSERT_TRUE(eventually([&] { return keychain.log.size() == 2; }));
    settle();
    pass(20s);
    EXPECT_EQ(store->token(), u"new"_s);
    EXPECT_EQ(store->phase(), Phase::signedIn);
    EXPECT_TRUE(server.requests.empty()) << "the old token is not verified any more";
}

TEST_F(AuthStoreTest, KeychainEndsAsTheLastWish) {
    struct Case {
        QStringList wishes; ///< tokens to sign in with; empty is a sign-out
        QStringList log;
        QString held;
    };
    for (const auto &[wishes, log, finally] : std::initializer_list<Case>{
             {{u"a"_s, u""_s}, {u"write a"_s, u"remove"_s}, {}},
             {{u"a"_s, u"b"_s, u""_s}, {u"write a"_s, u"remove"_s}, {}},
             {{u"a"_s, u""_s, u"b"_s}, {u"write a"_s, u"write b"_s}, u"b"_s},
             {{u""_s, u"a"_s}, {u"remove"_s, u"write a"_s}, u"a"_s},
         }) {
        FakeKeychain slow;
        slow.items.insert(AuthStore::tokenKey, u"before"_s);
        AuthStore fresh(server.url(u"/api"_s), slow, clock);
        fresh.startSignedOut();
        slow.hang();
        for (const QString &wish : wishes) {
            if (wish.isEmpty())
                fresh.signOut();
            else
                fresh.signIn(answer(u"u"_s, wish));
            settle();
        }
        EXPECT_TRUE(fresh.keychainWritePending());
        auto waiting = fresh.keychainSettled(100ms);
        pass(100ms);
        EXPECT_FALSE(await(std::move(waiting)));
        slow.release();
        EXPECT_TRUE(await(fresh.keychainSettled(100ms)));
        EXPECT_EQ(slow.log, log);
        EXPECT_EQ(slow.items.value(AuthStore::tokenKey), finally);
        EXPECT_EQ(slow.mostAtOnce, 1);
    }
}

TEST_F(AuthStoreTest, ASignOutThatTheKeychainKeptWaitingIsNotForgotten) {
    MemorySettings settings;
    const auto start = [&] {
        store = std::make_unique<AuthStore>(server.url(u"/api"_s), keychain, clock, u"@x"_s, &settings);
        store->restore();
        await(store->settled());
        return store->phase();
    };
    const QString account = AuthStore::tokenKey + u"@x"_s;
    keychain.items = {{account, u"old"_s}, {AuthStore::tokenKey, u"another site's"_s}};
    ASSERT_EQ(start(), Phase::signedIn);
    keychain.hang();
    store->signOut();
    // The program ends, and what it asked for is never done.
    store.reset();
    settle();
    EXPECT_EQ(start(), Phase::signedOut) << "however long the keychain takes";
    EXPECT_EQ(keychain.log, QStringList{u"read"_s}) << "it is not even asked what it holds";
    store->signIn(answer(u"u2"_s, u"new"_s));
    store->signOut();
    store.reset();
    keychain.release();
    ASSERT_TRUE(eventually([&] { return keychain.isIdle(); }));
    keychain.items.insert(account, u"old"_s);

    // A keychain that answers has it removed, and what is stored after that counts again.
    EXPECT_EQ(start(), Phase::signedOut);
    ASSERT_TRUE(await(store->keychainSettled(1s)));
    EXPECT_EQ(keychain.items.keys(), QStringList{AuthStore::tokenKey});
    EXPECT_TRUE(settings.values.isEmpty());
    store->signOut();
    store->signIn(answer(u"u2"_s, u"new"_s));
    ASSERT_TRUE(await(store->keychainSettled(1s)));
    EXPECT_EQ(start(), Phase::signedIn);
    EXPECT_EQ(store->token(), u"new"_s);

    // One that refuses to remove it cannot bring it back either.
    keychain.error = Keychain::Error{false, u"no"_s};
    store->signOut();
    ASSERT_TRUE(await(store->keychainSettled(1s)));
    keychain.error.reset();
    keychain.hang();
    EXPECT_EQ(start(), Phase::signedOut);
}

TEST_F(AuthStoreTest, TellsWhatTheKeychainDidNotDo) {
    struct Case {
        bool unavailable;
        QStringList log; ///< of a sign-in and a sign-out
        bool saysSignIn, saysSignOut;
    };
    for (const auto &[unavailable, log, saysSignIn, saysSignOut] : std::initializer_list<Case>{
             // A store that refused the new token must not bring back the former person's.
             {false, {u"write a"_s, u"remove"_s, u"remove"_s}, true, true},
             {true, {u"write a"_s, u"remove"_s}, true, false},
         }) {
        FakeKeychain broken;
        broken.error = Keychain::Error{unavailable, u"no"_s};
        AuthStore fresh(server.url(u"/api"_s), broken, clock);
        fresh.startSignedOut();
        fresh.signIn(answer(u"u"_s, u"a"_s));
        EXPECT_TRUE(await(fresh.keychainSettled(1s)));
        EXPECT_EQ(fresh.phase(), Phase::signedIn);
        EXPECT_EQ(fresh.token(), u"a"_s);
        EXPECT_EQ(!fresh.notice().isEmpty(), saysSignIn);
        fresh.signOut();
        EXPECT_TRUE(await(fresh.keychainSettled(1s)));
        EXPECT_EQ(!fresh.notice().isEmpty(), saysSignOut);
        EXPECT_EQ(broken.log, log);
        EXPECT_FALSE(fresh.token());
    }
}

TEST_F(AuthStoreTest, TellsWhoWasNotLetInThatASignInIsStored) {
    // There is none on many machines, and nothing to be told of it.
    for (const bool refused : {false, true}) {
        FakeKeychain shut;
        shut.error = Keychain::Error{.unavailable = true, .reason = u"no"_s, .refused = refused};
        AuthStore fresh(server.url(u"/api"_s), shut, clock);
        fresh.restore();
        await(fresh.settled());
        EXPECT_EQ(fresh.phase(), Phase::signedOut);
        EXPECT_EQ(!fresh.notice().isEmpty(), refused);
    }
}

TEST_F(AuthStoreTest, GivenTokenNeverTouchesTheKeychain) {
    keychain.items.insert(AuthStore::tokenKey, u"mine"_s);
    for (const int status : {200, 401}) {
        server.on(me, StubServer::reply(status, meBody("u1")));
        AuthStore fresh(server.url(u"/api"_s), keychain, clock);
        fresh.startWith(u"given"_s);
        await(fresh.settled());
        EXPECT_EQ(fresh.phase(), status == 200 ? Phase::signedIn : Phase::signedOut);
        fresh.signOut();
        settle();
        EXPECT_TRUE(keychain.log.isEmpty());
    }
    // Signing in by hand afterwards is a session of the person's own again.
    store->startWith(u"given"_s);
    store->signIn(answer(u"u2"_s, u"new"_s));
    EXPECT_TRUE(await(store->keychainSettled(1s)));
    EXPECT_EQ(keychain.items.value(AuthStore::tokenKey), u"new"_s);
}

TEST_F(AuthStoreTest, ProfilesHaveTokensOfTheirOwn) {
    AuthStore other(server.url(u"/api"_s), keychain, clock, u"#work"_s);
    other.startSignedOut();
    other.signIn(answer(u"u"_s, u"a"_s));
    EXPECT_TRUE(await(other.keychainSettled(1s)));
    EXPECT_EQ(keychain.items.keys(), QStringList{u"app-token#work"_s});
}

TEST_F(AuthStoreTest, RecordsANewAccountAlone) {
    MemorySettings settings;
    Telemetry telemetry({.apiBase = server.url(u"/api"_s), .appVersion = u"1"_s}, settings, clock);
    telemetry.setConsentProduct(true);
    Telemetry::install(&telemetry);
    store->startSignedOut();
    for (const auto &type : {std::optional<QString>(), std::optional(u"login"_s), std::optional(u"register"_s)})
        store->signIn({{.id = u"u9"_s}, u"t"_s, type});
    QStringList subjects;
    for (const QueuedEvent &event : telemetry.queue()) {
        if (event.eventName == u"identity.principal.registered"_s)
            subjects.push_back(event.subject.type + u' ' + event.subject.id);
    }
    EXPECT_EQ(subjects, QStringList{u"principal u9"_s});
}

TEST_F(AuthStoreTest, MayGoWhileAllIsUnderWay) {
    keychain.items.insert(AuthStore::tokenKey, u"tok"_s);
    const auto provider = store->tokenProvider();
    holdMe();
    store->restore();
    ASSERT_TRUE(eventually([&] { return held.size() == 1; }));
    keychain.hang();
    store->signIn(answer(u"u"_s, u"a"_s));
    store->signOut();
    store->startWith(u"b"_s);
    auto waiting = store->keychainSettled(1h);
    auto settled = store->settled();
    store.reset();
    EXPECT_FALSE(await(std::move(waiting)));
    await(std::move(settled));
    keychain.release();
    settle();
    std::optional<QString> seen;
    std::thread([&] { seen = provider(); }).join();
    EXPECT_EQ(seen, u"b"_s) << "a provider may outlive the store";
    EXPECT_EQ(clock.sleepers(), 0);
    EXPECT_TRUE(eventually([&] { return !held.front() && !held.back(); })) << "no request outlives its store";
}

} // namespace lmp
