#include "core/SSEClient.h"

#include "support/Await.h"
#include "support/StubServer.h"

#include <QElapsedTimer>
#include <gtest/gtest.h>

#include <thread>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

struct Question {
    QString text;
};
BOOST_DESCRIBE_STRUCT(Question, (), (text))

namespace {

/// What a consumer saw of a stream.
struct Seen {
    QList<QByteArray> data;
    std::optional<APIError> error;
};

QCoro::Task<Seen> readAll(SSEStream stream) {
    Seen seen;
    for (;;) {
        auto next = co_await stream.next();
        if (!next) {
            seen.error = next.error();
            co_return seen;
        }
        if (!*next)
            co_return seen;
        seen.data.append((*next)->data);
    }
}

/// Pulls one event and keeps the stream.
QCoro::Task<SSEStream::Next> pull(SSEStream *stream) {
    co_return co_await stream->next();
}

} // namespace

class SSEClientTest : public ::testing::Test {
protected:
    SSEClientTest() { client.session.requestTimeout = 5s; }

    Seen read(const QString &path) { return await(readAll(client.stream(path))); }

    /// A stream that begins with `bytes` and is then left open; `closed` tells when the client hung up.
    StubServer::Handler open(const QByteArray &bytes) {
        return [this, bytes](const auto &, QTcpSocket &socket) {
            QObject::connect(&socket, &QTcpSocket::disconnected, &server, [this] { closed = true; });
            socket.write("HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\n\r\n" + bytes);
        };
    }

    /// A stream that repeats `bytes` for as long as they are taken, and counts them.
    StubServer::Handler endless(const QByteArray &bytes) {
        return [this, bytes](const auto &, QTcpSocket &socket) {
            QObject::connect(&socket, &QTcpSocket::disconnected, &server, [this] { closed = true; });
            QObject::connect(&socket, &QTcpSocket::bytesWritten, &socket, [this, &socket, bytes](qint64 written) {
                sent += written;
                if (socket.bytesToWrite() < 256 * 1024)
                    socket.write(bytes);
            });
            socket.write("HTTP/1.1 200 OK\r\n\r\n" + bytes);
        };
    }

    StubServer server;
    SSEClient client{server.url(u"/api/"_s), [] {
                         return std::optional(u"tok"_s);
                     }};
    bool closed = false;
    qint64 sent = 0;
};

TEST_F(SSEClientTest, RequestCarriesHeadersTokenAndBody) {
    server.on("/api/s", StubServer::events("data: x\n\n"));
    EXPECT_EQ(await(readAll(client.stream(u"s?a=1"_s, "POST", Question{u"你好"_s}))).data, QList<QByteArray>{"x"});
    read(u"/s"_s);
    ASSERT_EQ(server.requests.size(), 2u);
    const auto &[post, get] = std::tie(server.requests[0], server.requests[1]);
    EXPECT_EQ(post.method + ' ' + post.path, "POST /api/s?a=1");
    EXPECT_EQ(post.body, "{\"text\":\"你好\"}");
    EXPECT_EQ(post.headers["content-type"], "application/json");
    for (const auto &request : {post, get}) {
        EXPECT_EQ(request.headers["accept"], "text/event-stream");
        EXPECT_EQ(request.headers["x-access-token"], "tok");
        EXPECT_EQ(request.headers["authorization"], "Bearer tok");
    }
    EXPECT_EQ(get.method, "GET");
    EXPECT_FALSE(get.headers.contains("content-type"));
}

TEST_F(SSEClientTest, EventsInAnyPieces) {
    const QByteArray bytes = "\xef\xbb\xbf: hi\r\nevent: delta\r\ndata: 你\r\n\r\ndata: 好\n\ndata: cut \xe4\xbd";
    for (const qsizetype piece : {-1, 1, 7}) {
        server.on("/api/s", StubServer::events(bytes, piece));
        const auto seen = read(u"/s"_s);
        EXPECT_EQ(seen.data, (QList<QByteArray>{"你", "好", "cut \xe4\xbd"})) << piece;
        EXPECT_FALSE(seen.error) << piece;
    }
}

TEST_F(SSEClientTest, AnswerThatIsThereAtOnce) {
    // Whether Qt has noticed by then that the request is out is a matter of luck, hence the rounds.
    const auto atOnce = [](const QByteArray &head) {
        return [head](const auto &, QTcpSocket &socket) {
            socket.write("HTTP/1.1 200 OK\r\n" + head + "\r\n\r\n9\r\ndata: 1\n\n\r\n");
            socket.disconnectFromHost();
        };
    };
    server.on("/api/closed", atOnce("Connection: close"));
    server.on("/api/large", StubServer::events(("data: " + QByteArray(1000, 'x') + "\n\n").repeated(300)));
    server.on("/api/length", atOnce("Content-Length: 99"));
    server.on("/api/chunked", atOnce("Transfer-Encoding: chunked"));
    for (int round = 0; round < 25; ++round) {
        EXPECT_EQ(read(u"/closed"_s).error, std::nullopt);
        EXPECT_EQ(read(u"/large"_s).data.size(), 300);
        EXPECT_EQ(read(u"/length"_s).error, APIError::network());
        EXPECT_EQ(read(u"/chunked"_s).error, APIError::network());
    }
}

TEST_F(SSEClientTest, RefusalsKeepStatusReasonCodeAndBody) {
    struct Case {
        int status;
        QByteArray body;
        APIError error;
    };
    for (const auto &[status, body, error] : std::initializer_list<Case>{
             {503,
              R"({"error":"relay_unconfigured","reason":"还没有接好"})",
              {503, u"还没有接好"_s, u"relay_unconfigured"_s, {}, {}, {}}},
             {402, R"({"error":"poor","needed":30,"balance":5})", {402, u"poor"_s, u"poor"_s, 30, 5, {}}},
             {502, "<html>", {502, u"请求失败（502）"_s, {}, {}, {}, {}}},
             {404, "", {404, u"请求失败（404）"_s, {}, {}, {}, {}}},
             {304, "", {304, u"请求失败（304）"_s, {}, {}, {}, {}}},
             {401, "data: x\n\n", {401, u"请求失败（401）"_s, {}, {}, {}, {}}},
         }) {
        server.on("/api/s", StubServer::reply(status, body, "WWW-Authenticate: Basic realm=\"x\"\r\n"));
        auto expected = error;
        expected.body = body;
        const auto seen = read(u"/s"_s);
        EXPECT_EQ(seen.error, expected) << body.constData();
        EXPECT_TRUE(seen.data.isEmpty());
    }
}

TEST_F(SSEClientTest, RefusalWithAnEndlessOrBrokenBodyStillTellsItsStatus) {
    server.on("/api/cut", [](const auto &, QTcpSocket &socket) {
        socket.write("HTTP/1.1 500 No\r\nContent-Length: 99\r\n\r\n{\"error\"");
        socket.disconnectFromHost();
    });
    EXPECT_EQ(read(u"/cut"_s).error->status, 500);
    server.on("/api/endless", [](const auto &, QTcpSocket &socket) {
        QObject::connect(&socket, &QTcpSocket::bytesWritten, &socket,
                         [&socket] { socket.write(QByteArray(64 * 1024, ' ')); });
        socket.write("HTTP/1.1 503 No\r\n\r\n ");
    });
    EXPECT_EQ(read(u"/endless"_s).error, APIError::fromAnswer(503, {}));
}

TEST_F(SSEClientTest, FailuresOfTheConnection) {
    server.on("/api/stall", open("data: first\n\ndata: second"));
    server.on("/api/silent", [](const auto &, QTcpSocket &) {});
    server.on("/api/cut", [](const auto &, QTcpSocket &socket) {
        socket.write("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n9\r\ndata: 1\n\n\r\n40\r\ndata: \xe4\xbd");
        socket.disconnectFromHost();
    });
    server.on("/api/garbage", [](const auto &, QTcpSocket &socket) {
        socket.write("SSH-2.0-OpenSSH_9\r\n\r\n");
        socket.disconnectFromHost();
    });
    client.session.requestTimeout = 60ms;
    struct Case {
        QString path;
        QList<QByteArray> data;
        APIError error;
    };
    const auto late = APIError::timedOut(APIError::Session::Normal);
    for (const auto &[path, data, error] : std::initializer_list<Case>{
             {u"/stall"_s, {"first"}, late},
             {u"/silent"_s, {}, late},
             {u"/cut"_s, {"1"}, APIError::network()},
             {u"/garbage"_s, {}, APIError::network()},
             {u"/no where"_s, {}, APIError::unusableURL()},
         }) {
        const auto seen = read(path);
        EXPECT_EQ(seen.data, data) << path.toStdString();
        EXPECT_EQ(seen.error, error) << path.toStdString();
    }
}

TEST_F(SSEClientTest, EndAndFailureAreRepeated) {
    server.on("/api/s", StubServer::events("data: x\n\n"));
    auto stream = client.stream(u"/s"_s);
    EXPECT_EQ(await(pull(&stream)).value()->data, "x");
    for (int again = 0; again < 2; ++again)
        EXPECT_EQ(await(pull(&stream)), SSEStream::Next(std::nullopt));
    auto bad = client.stream(u"\n"_s);
    for (int again = 0; again < 2; ++again)
        EXPECT_EQ(await(pull(&bad)), SSEStream::Next(std::unexpected(APIError::unusableURL())));
}

TEST_F(SSEClientTest, LineWithoutEndIsBounded) {
    server.on("/api/s", endless(QByteArray(256 * 1024, 'x')));
    EXPECT_EQ(read(u"/s"_s).error, APIError::invalidResponse());
    EXPECT_LT(sent, 64 * 1024 * 1024);
    EXPECT_TRUE(eventually([&] { return closed; }));
}

TEST_F(SSEClientTest, SlowConsumerSlowsTheSender) {
    client.session.readBuffer = 64 * 1024;
    client.session.requestTimeout = 100ms;
    server.on("/api/s", endless("data: x\n\n" + QByteArray(64 * 1024, '\n')));
    auto stream = client.stream(u"/s"_s);
    EXPECT_EQ(await(pull(&stream)).value()->data, "x");
    // The sender is held back, and for longer than the longest silence.
    QElapsedTimer still;
    qint64 before = -1;
    ASSERT_TRUE(eventually([&] {
        if (std::exchange(before, sent) != sent)
            still.start();
        return still.hasExpired(250);
    }));
    EXPECT_LT(sent, 48 * 1024 * 1024);
    // It goes on where it was: nothing timed out.
    while (sent == before)
        ASSERT_EQ(await(pull(&stream)).value()->data, "x");
}

TEST_F(SSEClientTest, StopEndsTheStreamWhetherSomebodyWaitsOrNot) {
    server.on("/api/s", open("data: 1\n\ndata: 2\n\n"));
    server.on("/api/endless", endless("data: x\n\n"));
    const SSEStream::Next stopped = std::unexpected(APIError::network());

    std::stop_source waited;
    auto stream = client.stream(u"/s"_s, "GET", waited.get_token());
    await(pull(&stream));
    await(pull(&stream));
    auto task = pull(&stream);
    settle();
    EXPECT_FALSE(task.isReady());
    std::thread([&] { waited.request_stop(); }).join();
    EXPECT_EQ(await(std::move(task)), stopped);
    EXPECT_TRUE(eventually([&] { return std::exchange(closed, false); }));

    std::stop_source idle;
    stream = client.stream(u"/endless"_s, "GET", idle.get_token());
    await(pull(&stream));
    idle.request_stop();
    EXPECT_EQ(await(pull(&stream)), stopped);
    EXPECT_TRUE(eventually([&] { return std::exchange(closed, false); }));

    const auto requests = server.requests.size();
    stream = client.stream(u"/s"_s, "GET", idle.get_token());
    EXPECT_EQ(await(pull(&stream)), stopped);
    settle();
    EXPECT_EQ(server.requests.size(), requests);
}

TEST_F(SSEClientTest, ConsumerThatLeavesClosesTheConnection) {
    server.on("/api/s", open("data: 1\n\ndata: 2\n\n"));
    {
        auto stream = client.stream(u"/s"_s);
        EXPECT_EQ(await(pull(&stream)).value()->data, "1");
        auto moved = std::move(stream);
        EXPECT_EQ(await(pull(&moved)).value()->data, "2");
        EXPECT_FALSE(closed);
    }
    EXPECT_TRUE(eventually([&] { return closed; }));
}

TEST_F(SSEClientTest, OpenStreamsLeaveRoomForRequests) {
    server.on("/api/s", open("data: 1\n\n"));
    server.on("/api/x", StubServer::reply(200, "{}"));
    std::vector<SSEStream> streams;
    for (int count = 0; count < 6; ++count) {
        streams.push_back(client.stream(u"/s"_s));
        ASSERT_TRUE(await(pull(&streams.back())).has_value());
    }
    APIClient calls(client.base, {});
    calls.session.resourceTimeout = 5s;
    EXPECT_TRUE(await(calls.request<APIClient::Empty>(u"/x"_s)));
}

TEST_F(SSEClientTest, RedirectIsFollowedWithoutTheTokenElsewhere) {
    StubServer other;
    other.on("/landed", StubServer::events("data: there\n\n"));
    server.on("/api/s",
              StubServer::reply(307, "data: here\n\n", "Location: " + other.url(u"/landed"_s).toEncoded() + "\r\n"));
    const auto seen = await(readAll(client.stream(u"/s"_s, "POST", Question{u"a"_s})));
    EXPECT_EQ(seen.data, QList<QByteArray>{"there"});
    ASSERT_EQ(other.requests.size(), 1u);
    EXPECT_EQ(other.requests[0].body, "{\"text\":\"a\"}");
    EXPECT_EQ(other.requests[0].headers["accept"], "text/event-stream");
    EXPECT_FALSE(other.requests[0].headers.contains("authorization"));
}

} // namespace lmp
