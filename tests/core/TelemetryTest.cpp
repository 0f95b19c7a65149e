#include "core/Telemetry.h"

#include "support/Await.h"
#include "support/ManualClock.h"
#include "support/MemorySettings.h"
#include "support/StubServer.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <limits>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class TelemetryTest : public ::testing::Test {
protected:
    static constexpr auto path = "/api/telemetry/events";

    TelemetryTest() { server.on(path, StubServer::reply(200, "{}")); }
    ~TelemetryTest() override { Telemetry::install(nullptr); }

    void TearDown() override {
        telemetry.reset();
        settle();
    }

    std::unique_ptr<Telemetry> make() {
        return std::make_unique<Telemetry>(Telemetry::Deployment{.apiBase = server.url(u"/api"_s),
                                                                 .appVersion = u"1.2"_s,
                                                                 .viewport = u"terminal"_s,
                                                                 .tokenProvider =
                                                                     [this] {
                                                                         return token;
                                                                     }},
                                           settings, clock);
    }
    static void recordMany(Telemetry &recorder, int count) {
        for (int n = 0; n < count; ++n)
            recorder.record(u"stability.n%1"_s.arg(n), {u"t"_s, u"i"_s});
    }
    bool idle(const Telemetry &recorder) {
        return eventually([&] { return !recorder.isFlushing(); });
    }
    QList<QueuedEvent> persisted() const {
        return Json::decode<QList<QueuedEvent>>(settings.value(queueKey).value_or("[]")).value();
    }
    TelemetryBatch batch(size_t at) const { return Json::decode<TelemetryBatch>(server.requests.at(at).body).value(); }
    static QStringList names(const QList<QueuedEvent> &events) {
        QStringList list;
        for (const QueuedEvent &event : events)
            list.push_back(event.eventName);
        return list;
    }

    const QString queueKey = u"lmp.telemetry.queue.v1"_s;
    StubServer server;
    ManualClock clock;
    MemorySettings settings;
    std::optional<QString> token;
    std::unique_ptr<Telemetry> telemetry = make();
};

TEST_F(TelemetryTest, RecordsWhatItMay) {
    struct Case {
        QString name;
        bool without, with;
    };
    for (const auto &[name, without, with] : std::initializer_list<Case>{
             {u"stability.client.error"_s, true, true},
             {u"safety.gate.shown"_s, true, true},
             {u"engagement.session.started"_s, false, true},
             {u"stabilityx"_s, false, true},
             {u"progress.verified"_s, false, false},
             {u"ai.cost.recorded"_s, false, false},
             {u"companion.consistency_check.run"_s, false, false},
             {u"safety.crisis.detected"_s, false, false},
         }) {
        for (const bool consent : {false, true}) {
            telemetry->setConsentProduct(consent);
            telemetry->record(name, {u"t"_s, u"i"_s});
            EXPECT_EQ(names(telemetry->queue()).contains(name), consent ? with : without) << name.toStdString();
            telemetry->setConsentProduct(false);
        }
    }
}

TEST_F(TelemetryTest, EventsAsTheyGoOut) {
    telemetry->setConsentProduct(true);
    telemetry->startLifecycle(clock.monotonic() - 1500ms);
    telemetry->startLifecycle(clock.monotonic());
    telemetry->record(u"talk.x"_s, {u"conversation"_s, u"c1"_s},
                      {{u"s"_s, u"\"你\u2028"_s}, {u"n"_s, 0.5}, {u"b"_s, true}, {u"z"_s, JSONValue()}},
                      {{u"m"_s, 2}, {u"bad"_s, std::numeric_limits<double>::infinity()}});
    token = u"tok"_s;
    telemetry->flush();
    ASSERT_TRUE(idle(*telemetry));
    ASSERT_EQ(server.requests.size(), 1u);
    const auto &request = server.requests[0];
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.headers["content-type"], "application/json");
    EXPECT_EQ(request.headers["accept"], "application/json");
    EXPECT_EQ(request.headers["x-access-token"], "tok");
    EXPECT_EQ(request.headers["authorization"], "Bearer tok");
    const TelemetryBatch sent = batch(0);
    EXPECT_EQ(sent.context.platform, u"macos"_s);
    EXPECT_EQ(sent.context.appVersion, u"1.2"_s);
    EXPECT_EQ(sent.context.anonId, telemetry->anonId());
    EXPECT_EQ(sent.context.sessionId, telemetry->sessionState().id);
    EXPECT_EQ(sent.context.viewport, u"terminal"_s);
    EXPECT_TRUE(sent.consent.essential && sent.consent.product);
    EXPECT_EQ(sent.sentAt, u"2026-01-02T03:04:05.000Z"_s);
    EXPECT_EQ(names(sent.events),
              (QStringList{u"stability.app.cold_start"_s, u"engagement.session.started"_s, u"talk.x"_s}));
    EXPECT_EQ(sent.events[0].metrics, (QMap<QString, double>{{u"duration"_s, 1500}}));
    EXPECT_EQ(sent.events[0].props, (Telemetry::Props{{u"appVersion"_s, u"1.2"_s}}));
    EXPECT_TRUE(QRegularExpression(u"^evt_[0-9a-f]{24}$"_s).match(sent.events[2].eventId).hasMatch());
    EXPECT_EQ(sent.events[2].occurredAt, u"2026-01-02T03:04:05.000Z"_s);
    EXPECT_EQ(sent.events[2].subject, (EventSubject{u"conversation"_s, u"c1"_s}));
    EXPECT_EQ(sent.events[2].metrics, (QMap<QString, double>{{u"m"_s, 2}}));
    const auto props = boost::json::parse(request.body.toStdString()).at("events").at(2).at("props");
    EXPECT_EQ(props, (boost::json::value{{"b", true}, {"n", 0.5}, {"s", "\"你\u2028"}, {"z", nullptr}}));
    EXPECT_TRUE(telemetry->queue().isEmpty());
    EXPECT_TRUE(persisted().isEmpty());
}

TEST_F(TelemetryTest, TwentiethEventFlushesOneBatchAtATime) {
    QList<QPointer<QTcpSocket>> held;
    server.on(path, [&](const StubServer::Request &, QTcpSocket &socket) { held.push_back(&socket); });
    recordMany(*telemetry, 19);
    EXPECT_FALSE(telemetry->isFlushing());
    recordMany(*telemetry, 1);
    EXPECT_TRUE(telemetry->isFlushing());
    recordMany(*telemetry, 30);
    telemetry->flush();
    ASSERT_TRUE(eventually([&] { return held.size() == 1; }));
    settle();
    EXPECT_EQ(server.requests.size(), 1u);
    EXPECT_EQ(batch(0).events.size(), 20);
    server.on(path, StubServer::reply(204, ""));
    held[0]->write(StubServer::message(200, "not json"));
    ASSERT_TRUE(idle(*telemetry));
    // Thirty were left: twenty go at once, ten wait for their time.
    ASSERT_EQ(server.requests.size(), 2u);
    EXPECT_EQ(batch(1).events.size(), 20);
    EXPECT_EQ(telemetry->queue().size(), 10);
}

TEST_F(TelemetryTest, AnswersDecideWhatStays) {
    struct Case {
        int status; ///< 0 breaks the connection
        bool stays;
    };
    for (const auto &[status, stays] : std::initializer_list<Case>{{200, false},
                                                                   {202, false},
                                                                   {400, false},
                                                                   {401, false},
                                                                   {413, false},
                                                                   {429, true},
                                                                   {500, true},
                                                                   {503, true},
                                                                   {0, true}}) {
        telemetry.reset();
        settings.values.clear();
        telemetry = make();
        server.on(path, [&, now = status](const StubServer::Request &, QTcpSocket &socket) {
            // Recorded while the batch is under way: whatever comes, this one was not in it.
            telemetry->record(u"stability.later"_s, {u"t"_s, u"i"_s});
            if (now == 0)
                socket.abort();
            else
                socket.write(StubServer::message(now, ""));
        });
        recordMany(*telemetry, 2);
        telemetry->flush();
        ASSERT_TRUE(idle(*telemetry));
        const QStringList left = names(telemetry->queue());
        EXPECT_EQ(left.size(), stays ? 3 : 1) << status;
        EXPECT_EQ(left.last(), u"stability.later"_s);
    }
}

TEST_F(TelemetryTest, KeepsTheNewest200) {
    server.on(path, [](const StubServer::Request &, QTcpSocket &) {});
    recordMany(*telemetry, 201);
    EXPECT_EQ(telemetry->queue().size(), 200);
    EXPECT_EQ(telemetry->queue().first().eventName, u"stability.n1"_s);
    EXPECT_EQ(telemetry->queue().last().eventName, u"stability.n200"_s);
}

TEST_F(TelemetryTest, QueueSurvivesWithoutAnEnd) {
    recordMany(*telemetry, 3);
    recordMany(*telemetry, 2);
    EXPECT_TRUE(persisted().isEmpty()) << "a burst is written once";
    clock.advance(250ms);
    settle();
    EXPECT_EQ(persisted().size(), 5);
    // As after a kill: the second run starts from what is on the disk.
    MemorySettings copy;
    copy.values = settings.values;
    Telemetry second({.apiBase = server.url(u"/api"_s), .appVersion = u"1"_s}, copy, clock);
    EXPECT_EQ(second.queue(), telemetry->queue());
    EXPECT_EQ(second.anonId(), telemetry->anonId());
    second.flush();
    ASSERT_TRUE(idle(second));
    EXPECT_EQ(batch(0).events, telemetry->queue());
}

TEST_F(TelemetryTest, DamagedStateCostsOnlyItself) {
    const QByteArray good = R"({"eventId":"evt_1","eventName":"stability.a","occurredAt":"t",)"
                            R"("subject":{"type":"t","id":"i"},"metrics":{},"props":{},"schemaVersion":1})";
    struct Case {
        QByteArray queue;
        qsizetype left;
    };
    for (const auto &[queue, left] : std::initializer_list<Case>{
             {"", 0},
             {"{", 0},
             {"{}", 0},
             {"\xff\xfe", 0},
             {'[' + good + ",{\"eventId\":7}," + good + ']', 2},
             {'[' + good + "," + QByteArray(good).replace("\"props\":{}", "\"props\":{\"x\":[]}") + ']', 1},
             {'[' + QByteArray(good + ',').repeated(249) + good + ']', 200},
         }) {
        settings.values = {{queueKey, queue},
                           {u"lmp.telemetry.anon.v1"_s, "anon_../x"},
                           {u"lmp.telemetry.session.v1"_s, "{\"id\":3}"},
                           {u"lmp.telemetry.consent.product.v1"_s, "?"}};
        const auto fresh = make();
        EXPECT_EQ(fresh->queue().size(), left) << queue.first(std::min<qsizetype>(queue.size(), 40)).constData();
        EXPECT_TRUE(QRegularExpression(u"^anon_[0-9a-f]{32}$"_s).match(fresh->anonId()).hasMatch());
        EXPECT_FALSE(fresh->consentProduct());
    }
}

TEST_F(TelemetryTest, SessionLastsOverShortPauses) {
    struct Case {
        std::chrono::milliseconds pause;
        bool same;
    };
    for (const auto &[pause, same] :
         std::initializer_list<Case>{{1800s, true}, {1800s + 1ms, false}, {-1800s, true}, {-24h, false}}) {
        settings.values.clear();
        auto first = make();
        first->setConsentProduct(true);
        first->startLifecycle(clock.monotonic());
        const QString id = first->sessionState().id;
        ASSERT_FALSE(id.isEmpty());
        first.reset();
        clock.advance(pause);
        settings.remove(queueKey);
        auto second = make();
        second->startLifecycle(clock.monotonic());
        EXPECT_EQ(second->sessionState().id == id, same) << pause.count();
        EXPECT_EQ(names(second->queue()).contains(u"engagement.session.started"_s), !same) << pause.count();
    }
}

TEST_F(TelemetryTest, ConsentIsKeptAndTakenBack) {
    EXPECT_FALSE(telemetry->consentProduct());
    EXPECT_FALSE(telemetry->noticeSeen());
    telemetry->setConsentProduct(true);
    telemetry->markNoticeSeen();
    telemetry->record(u"talk.x"_s, {u"t"_s, u"i"_s});
    telemetry->record(u"stability.x"_s, {u"t"_s, u"i"_s});
    telemetry.reset();
    telemetry = make();
    EXPECT_TRUE(telemetry->consentProduct());
    EXPECT_TRUE(telemetry->noticeSeen());
    telemetry->setConsentProduct(false);
    EXPECT_EQ(names(persisted()), QStringList{u"stability.x"_s}) << "what waited under the old consent goes nowhere";
}

TEST_F(TelemetryTest, FlushesEveryMinuteAndInTheBackground) {
    telemetry->startLifecycle(clock.monotonic());
    settle();
    clock.advance(59s);
    settle();
    EXPECT_FALSE(telemetry->isFlushing());
    clock.advance(1s);
    ASSERT_TRUE(eventually([&] { return server.requests.size() == 1; }));
    ASSERT_TRUE(idle(*telemetry));
    recordMany(*telemetry, 1);
    telemetry->enteredBackground();
    EXPECT_EQ(persisted().size(), 1);
    ASSERT_TRUE(eventually([&] { return server.requests.size() == 2; }));
    ASSERT_TRUE(idle(*telemetry));
}

TEST_F(TelemetryTest, OrderlyExitSendsAllItCan) {
    await(telemetry->flushForExit(1s));
    EXPECT_TRUE(server.requests.empty()) << "nothing to send, nothing to wait for";
    telemetry.reset();
    telemetry = make();
    server.on(path, StubServer::reply(503, ""));
    recordMany(*telemetry, 45);
    ASSERT_TRUE(idle(*telemetry));
    server.requests.clear();
    server.on(path, StubServer::reply(200, ""));
    await(telemetry->flushForExit(1s));
    EXPECT_EQ(server.requests.size(), 3u);
    EXPECT_TRUE(persisted().isEmpty());
}

TEST_F(TelemetryTest, OrderlyExitWaitsNoLongerThanItMay) {
    server.on(path, [](const StubServer::Request &, QTcpSocket &) {});
    recordMany(*telemetry, 5);
    auto leaving = telemetry->flushForExit(1s);
    EXPECT_EQ(persisted().size(), 5) << "kept before anything is tried";
    ASSERT_TRUE(eventually([&] { return server.requests.size() == 1; }));
    clock.advance(1s);
    await(std::move(leaving));
    ASSERT_TRUE(idle(*telemetry));
    EXPECT_EQ(persisted().size(), 5);
    telemetry.reset();
    EXPECT_EQ(make()->queue().size(), 5);
}

TEST_F(TelemetryTest, AFullDiskLosesNothingInMemory) {
    settings.full = true;
    recordMany(*telemetry, 2);
    clock.advance(250ms);
    settle();
    EXPECT_EQ(telemetry->queue().size(), 2);
    settings.full = false;
    recordMany(*telemetry, 1);
    clock.advance(250ms);
    settle();
    EXPECT_EQ(persisted().size(), 3);
}

TEST_F(TelemetryTest, HearsOfAnswersThatDoNotDecode) {
    Telemetry::install(telemetry.get());
    DecodeFailureSink::report(u"/app/handle/check?handle=secret"_s, u"原因"_s, 200);
    settle();
    ASSERT_EQ(telemetry->queue().size(), 1);
    EXPECT_EQ(telemetry->queue()[0].eventName, u"stability.client.error"_s);
    EXPECT_EQ(telemetry->queue()[0].props, (Telemetry::Props{{u"endpoint"_s, u"/app/handle/check"_s},
                                                             {u"kind"_s, u"decode_failed"_s},
                                                             {u"reason"_s, u"原因"_s},
                                                             {u"status"_s, 200}}));
    telemetry.reset();
    DecodeFailureSink::report(u"/x"_s, u"原因"_s, 200);
    Telemetry::note(u"stability.x"_s, {u"t"_s, u"i"_s});
    settle();
    EXPECT_EQ(Telemetry::shared(), nullptr);
}

TEST_F(TelemetryTest, MayGoWhileABatchIsUnderWay) {
    server.on(path, [](const StubServer::Request &, QTcpSocket &) {});
    telemetry->startLifecycle(clock.monotonic());
    telemetry->flush();
    ASSERT_TRUE(eventually([&] { return server.requests.size() == 1; }));
    telemetry.reset();
    settle();
    EXPECT_EQ(clock.sleepers(), 0);
    EXPECT_EQ(persisted().size(), 1);
}

} // namespace lmp
