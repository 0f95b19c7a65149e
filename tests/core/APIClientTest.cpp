#include "core/APIClient.h"
#include "core/RequestURL.h"

#include "support/Await.h"
#include "support/StubServer.h"

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

struct Titled {
    QString title;
    std::optional<qint64> size;
};
BOOST_DESCRIBE_STRUCT(Titled, (), (title, size))

struct Shelf {
    QList<Titled> items;
};
BOOST_DESCRIBE_STRUCT(Shelf, (), (items))

struct Ratio {
    double value = 0;
};
BOOST_DESCRIBE_STRUCT(Ratio, (), (value))

class APIClientTest : public ::testing::Test {
protected:
    APIClient client(std::optional<QString> token = std::nullopt) {
        return APIClient(server.url(u"/api"_s), [token] { return token; });
    }
    template <class T>
    Result<T> get(const APIClient &from, const QString &path) {
        return await(from.request<T>(path));
    }

    StubServer server;
};

TEST_F(APIClientTest, JoinsBaseAndPath) {
    struct Case {
        QString base, path, joined;
    };
    for (const auto &[base, path, joined] : std::initializer_list<Case>{
             {u"http://h/api/"_s, u"app/me"_s, u"http://h/api/app/me"_s},
             {u"http://h/api//"_s, u"/app/me"_s, u"http://h/api/app/me"_s},
             {u"http://h/api"_s, u"/app/c?id=a&b=%20"_s, u"http://h/api/app/c?id=a&b=%20"_s},
             {u"h/api"_s, u"/app"_s, {}},
             {u"ftp://h"_s, u"/app"_s, {}},
             {u"http://h/?x=1"_s, u"/app"_s, {}},
             {u"http://h/#x"_s, u"/app"_s, {}},
             {u"http://h"_s, u"/app?id=a b"_s, {}},
             {u"http://h"_s, u"/app?id=\r\nX: y"_s, {}},
             {u"http://h"_s, u"/app?id=%zz"_s, {}},
             {u"http://h"_s, u"/app?id=%4"_s, {}},
         }) {
        const auto url = RequestURL::join(QUrl(base), path);
        EXPECT_EQ(url ? url->toString(QUrl::FullyEncoded) : QString(), joined) << base.toStdString();
        if (!url)
            EXPECT_EQ(url.error().reason, u"地址不合法"_s);
    }
}

TEST_F(APIClientTest, SendsTokenAndBodyOnce) {
    server.on("/api/x", StubServer::reply(200, "{}"));
    ASSERT_TRUE(await(client(u"tok"_s).request<APIClient::Empty>(u"/x"_s, "POST", Titled{u"你"_s, {}})));
    ASSERT_TRUE(get<APIClient::Empty>(client(), u"x"_s));
    ASSERT_TRUE(get<APIClient::Empty>(client(u"a\r\nEvil: 1"_s), u"x"_s));
    ASSERT_EQ(server.requests.size(), 3u);
    const auto &post = server.requests[0];
    EXPECT_EQ(post.method, "POST");
    EXPECT_EQ(post.headers["x-access-token"], "tok");
    EXPECT_EQ(post.headers["authorization"], "Bearer tok");
    EXPECT_EQ(post.headers["content-type"], "application/json");
    EXPECT_EQ(post.headers["accept"], "application/json");
    EXPECT_EQ(post.body, "{\"title\":\"你\"}");
    for (int bare : {1, 2}) {
        EXPECT_FALSE(server.requests[bare].headers.contains("x-access-token"));
        EXPECT_FALSE(server.requests[bare].headers.contains("authorization"));
        EXPECT_FALSE(server.requests[bare].headers.contains("content-type"));
        EXPECT_FALSE(server.requests[bare].headers.contains("evil"));
    }
}

TEST_F(APIClientTest, ErrorBodies) {
    struct Case {
        int status;
        QByteArray body;
        QString reason;
        std::optional<QString> code;
        std::optional<qint64> needed, balance;
    };
    for (const auto &[status, body, reason, code, needed, balance] : std::initializer_list<Case>{
             {402, R"({"error":"X","needed":30,"balance":5})", u"X"_s, u"X"_s, 30, 5},
             {409, R"({"error":"X","reason":"改过了"})", u"改过了"_s, u"X"_s, {}, {}},
             {502, "<html>", u"请求失败（502）"_s, {}, {}, {}},
             {500, "", u"请求失败（500）"_s, {}, {}, {}},
             {400, R"({"error":7,"reason":"r"})", u"请求失败（400）"_s, {}, {}, {}},
             {304, "", u"请求失败（304）"_s, {}, {}, {}},
             {407, "", u"请求失败（407）"_s, {}, {}, {}},
             {401, R"({"error":"unauthorized"})", u"unauthorized"_s, u"unauthorized"_s, {}, {}},
         }) {
        server.on("/api/e", StubServer::reply(status, body, "WWW-Authenticate: Basic realm=\"x\"\r\n"));
        const auto answer = get<Titled>(client(), u"/e"_s);
        ASSERT_FALSE(answer);
        EXPECT_EQ(answer.error(), (APIError{status, reason, code, needed, balance, body})) << body.constData();
        const auto raw = await(client().getData(u"/e"_s));
        EXPECT_EQ(raw.error(), (APIError{status, reason, code, {}, {}, body}));
    }
}

TEST_F(APIClientTest, DecodeSentences) {
    QString endpoint, said;
    DecodeFailureSink::install([&](const QString &path, const QString &reason, int status) {
        endpoint = path;
        said = reason + QString::number(status);
    });
    struct Case {
        QByteArray body;
        QString reason;
    };
    for (const auto &[body, reason] : std::initializer_list<Case>{
             {R"({})", u"数据格式对不上：Shelf 要求字段「items」，服务端没给（位置 (根)）"_s},
             {R"({"items":[{}]})", u"数据格式对不上：Shelf 要求字段「title」，服务端没给（位置 .items[0]）"_s},
             {R"({"items":[{"title":null}]})",
              u"数据格式对不上：Shelf 的 .items[0].title 是必填 String，服务端给了 null"_s},
             {R"({"items":[{"title":"a"},{"title":1}]})",
              u"数据格式对不上：Shelf 的 .items[1].title 期望 String，服务端给的不是"_s},
             {R"({"items":{}})", u"数据格式对不上：Shelf 的 .items 期望 Array，服务端给的不是"_s},
             {R"({"items":[{"title":"a","size":9223372036854775808}]})",
              u"数据格式对不上：Shelf 的 .items[0].size 内容无法解析"_s},
             {R"({"items":[)", u"数据格式对不上：Shelf 的 (根) 内容无法解析"_s},
             {"", u"数据格式对不上：Shelf 的 (根) 内容无法解析"_s},
             {QByteArray(100'000, '['), u"数据格式对不上：Shelf 的 (根) 内容无法解析"_s},
             {"7", u"数据格式对不上：Shelf 的 (根) 期望 Shelf，服务端给的不是"_s},
         }) {
        server.on("/api/s", StubServer::reply(201, body));
        const auto answer = get<Shelf>(client(), u"/s?q=1"_s);
        ASSERT_FALSE(answer);
        EXPECT_EQ(answer.error(), (APIError{201, reason, {}, {}, {}, {}}));
        ASSERT_TRUE(eventually([&] { return said == reason + u"201"_s; }));
        EXPECT_EQ(endpoint, u"/s?q=1"_s);
    }
    DecodeFailureSink::install({});
}

TEST_F(APIClientTest, BodyThatHasNoJsonThrowsBeforeAnythingIsSent) {
    EXPECT_THROW(auto task = client().request<APIClient::Empty>(u"/x"_s, "POST", Ratio{std::nan("")}),
                 JsonEncodingError);
    settle();
    EXPECT_TRUE(server.requests.empty());
}

TEST_F(APIClientTest, LargeAnswerIsDecodedAndHugeOneRefused) {
    const QByteArray title(200'000, 'a');
    server.on("/api/big", StubServer::reply(200, "{\"title\":\"" + title + "\"}"));
    const auto big = get<Titled>(client(), u"/big"_s);
    ASSERT_TRUE(big);
    EXPECT_EQ(big->title.size(), title.size());

    // The length alone is enough; nobody has to send it.
    server.on("/api/huge", [](const auto &, QTcpSocket &socket) {
        socket.write("HTTP/1.1 200 OK\r\nContent-Length: 104857600\r\n\r\n{\"title\":\"");
    });
    const auto huge = get<Titled>(client(), u"/huge"_s);
    ASSERT_FALSE(huge);
    EXPECT_EQ(huge.error().reason, u"数据格式对不上：Titled 的 (根) 内容无法解析"_s);
}

TEST_F(APIClientTest, TransportFailures) {
    server.on("/api/cut", [](const auto &, QTcpSocket &socket) {
        socket.write("HTTP/1.1 200 OK\r\nContent-Length: 50\r\n\r\n{\"title\":");
        socket.disconnectFromHost();
    });
    server.on("/api/drop", [](const auto &, QTcpSocket &socket) { socket.abort(); });
    server.on("/api/garbage", [](const auto &, QTcpSocket &socket) {
        socket.write("SSH-2.0-OpenSSH_9\r\n\r\n");
        socket.disconnectFromHost();
    });
    server.on("/api/stall", [](const auto &, QTcpSocket &) {});
    server.on("/api/drip", [](const auto &, QTcpSocket &socket) {
        socket.write("HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n");
        auto *timer = new QTimer(&socket);
        QObject::connect(timer, &QTimer::timeout, &socket, [&socket] { socket.write(" "); });
        timer->start(5);
    });
    // A body that began and then stalls is as silent as none, long before the whole time is up.
    server.on("/api/begun", [](const auto &, QTcpSocket &socket) {
        socket.write("HTTP/1.1 200 OK\r\nContent-Length: 50\r\n\r\n{\"title\":");
    });
    // What does not decompress is no whole answer.
    server.on("/api/packed", StubServer::reply(200, "\x1f\x8b\x08\0\0\0\0\0\0\x03 this is no deflate stream"_ba,
                                               "Content-Encoding: gzip\r\n"));
    auto patient = client();
    patient.session.requestTimeout = 60ms;
    patient.session.resourceTimeout = 60s;
    EXPECT_EQ(get<Titled>(patient, u"/begun"_s).error().reason, u"等太久了，再试一次。"_s);
    const auto packed = await(client().getData(u"/packed"_s));
    ASSERT_FALSE(packed);
    EXPECT_EQ(packed.error(), APIError::network());

    auto quick = client();
    quick.session.requestTimeout = quick.slowSession.requestTimeout = 60ms;
    quick.session.resourceTimeout = quick.slowSession.resourceTimeout = 300ms;

    EXPECT_EQ(get<Titled>(quick, u"/cut"_s).error(), APIError::network());
    EXPECT_EQ(get<Titled>(quick, u"/drop"_s).error(), APIError::network());
    EXPECT_EQ(get<Titled>(quick, u"/garbage"_s).error(), APIError::network());
    EXPECT_EQ(get<Titled>(quick, u"/stall"_s).error().reason, u"等太久了，再试一次。"_s);
    EXPECT_EQ(get<Titled>(quick, u"/drip"_s).error().reason, u"等太久了，再试一次。"_s);
    EXPECT_EQ(await(quick.request<Titled>(u"/stall"_s, "GET", true)).error().reason,
              u"栎想太久了，这次没跑完——再说一次试试。"_s);
    EXPECT_EQ(await(quick.getData(u"/stall"_s, true)).error().reason, u"等太久了，再试一次。"_s);

    QTcpServer nobody;
    nobody.listen(QHostAddress::LocalHost);
    auto refused = quick;
    refused.base = QUrl(u"http://127.0.0.1:%1"_s.arg(nobody.serverPort()));
    nobody.close();
    EXPECT_EQ(get<Titled>(refused, u"/x"_s).error(), APIError::network());
}

TEST_F(APIClientTest, NothingIsSentTwice) {
    // Qt repeats a request on its own when a kept connection turns out dead.
    server.on("/api/ok", StubServer::reply(200, "{}"));
    server.on("/api/drop", [](const auto &, QTcpSocket &socket) { socket.abort(); });
    for (const QByteArray method : {"GET", "POST", "PUT"}) {
        server.requests.clear();
        ASSERT_TRUE(await(client().request<APIClient::Empty>(u"/ok"_s, method, APIClient::Empty{})));
        ASSERT_FALSE(await(client().request<APIClient::Empty>(u"/drop"_s, method, APIClient::Empty{})));
        EXPECT_EQ(server.requests.size(), 2u) << method.constData();
    }
}

TEST_F(APIClientTest, WaitsForConnectivityWithinTheResourceTimeOut) {
    auto waiting = client();
    waiting.base = QUrl(u"http://192.0.2.1:9"_s);
    waiting.session.resourceTimeout = 50ms;
    waiting.session.online = [] {
        return false;
    };
    EXPECT_EQ(get<Titled>(waiting, u"/x"_s).error(), APIError::timedOut(APIError::Session::Normal));
}

TEST_F(APIClientTest, RedirectsLeaveTheTokenBehind) {
    StubServer other;
    other.on("/landed", StubServer::reply(200, R"({"title":"there"})"));
    server.on("/api/landed", StubServer::reply(200, R"({"title":"here"})"));
    const auto redirect = [](int status, const QByteArray &to) {
        return StubServer::reply(status, {}, "Location: " + to + "\r\n");
    };
    server.on("/api/near", redirect(302, "/api/landed"));
    server.on("/api/far", redirect(307, other.url(u"/landed"_s).toEncoded()));
    server.on("/api/loop", redirect(302, "/api/loop"));
    server.on("/api/file", redirect(302, "file:///etc/passwd"));

    EXPECT_EQ(get<Titled>(client(u"t"_s), u"/near"_s)->title, u"here"_s);
    EXPECT_EQ(server.requests.back().headers["authorization"], "Bearer t");
    EXPECT_EQ(await(client(u"t"_s).request<Titled>(u"/far"_s, "POST", Titled{u"b"_s, {}}))->title, u"there"_s);
    ASSERT_EQ(other.requests.size(), 1u);
    EXPECT_EQ(other.requests[0].method, "POST");
    EXPECT_EQ(other.requests[0].body, "{\"title\":\"b\"}");
    EXPECT_FALSE(other.requests[0].headers.contains("authorization"));
    EXPECT_FALSE(other.requests[0].headers.contains("x-access-token"));
    EXPECT_EQ(get<Titled>(client(), u"/loop"_s).error(), APIError::network());
    EXPECT_EQ(get<Titled>(client(), u"/file"_s).error().status, 302);
}

TEST_F(APIClientTest, StopEndsTheCall) {
    server.on("/api/stall", [](const auto &, QTcpSocket &) {});
    std::stop_source stop;
    auto task = client().request<Titled>(u"/stall"_s, "POST", APIClient::Empty{}, false, stop.get_token());
    ASSERT_TRUE(eventually([&] { return !server.requests.empty(); }));
    stop.request_stop();
    EXPECT_EQ(await(std::move(task)).error(), APIError::network());
}

} // namespace lmp
