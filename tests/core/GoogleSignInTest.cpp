#include "core/GoogleSignIn.h"

#include "support/Await.h"
#include "support/ManualClock.h"
#include "support/StubServer.h"

#include <QCryptographicHash>
#include <QUrlQuery>

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Kind = WebAuthFailure::Kind;

namespace {

/// Stands for the person's browser: remembers the page it was sent to, or refuses to start.
class RecordingOpener : public ExternalOpener {
public:
    bool works = true;
    QList<QUrl> opened;
    bool open(const QUrl &url) override {
        if (works)
            opened.push_back(url);
        return works;
    }
};

} // namespace

class GoogleSignInTest : public ::testing::Test {
protected:
    GoogleSignInTest() {
        server.on("/token", [this](const StubServer::Request &request, QTcpSocket &socket) {
            form = QUrlQuery(QString::fromLatin1(request.body));
            socket.write(StubServer::message(tokenStatus, tokenBody.isEmpty() ? idToken(nonce) : tokenBody));
        });
    }

    static QByteArray idToken(const QString &nonce) {
        const auto part = [](const QByteArray &json) {
            return json.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
        };
        return R"({"id_token":")" + part("{}") + '.' + part("{\"nonce\":\"" + nonce.toLatin1() + "\"}") + ".sig\"}";
    }
    QString asked(const QString &name) const {
        return QUrlQuery(opener.opened.last()).queryItemValue(name, QUrl::FullyDecoded);
    }
    /// Begins an attempt and takes what its page is asked for.
    QCoro::Task<GoogleSignIn::Outcome> begin() {
        auto attempt = google.idToken(stop.get_token());
        nonce = asked(u"nonce"_s);
        return attempt;
    }
    /// What the browser sends to the loopback address, and what it is shown.
    QByteArray send(const QByteArray &bytes) {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, quint16(QUrl(asked(u"redirect_uri"_s)).port()));
        QObject::connect(&socket, &QTcpSocket::connected, &socket, [&] { socket.write(bytes); });
        eventually([&] { return socket.state() == QAbstractSocket::UnconnectedState; });
        return socket.isOpen() ? socket.readAll() : QByteArray();
    }
    QByteArray visit(const QString &query) {
        const QUrl redirect(asked(u"redirect_uri"_s));
        return send("GET " + redirect.path().toLatin1() + '?' + query.toLatin1() +
                    " HTTP/1.1\r\nHost: 127.0.0.1:" + QByteArray::number(redirect.port()) + "\r\n\r\n");
    }

    StubServer server;
    ManualClock clock;
    RecordingOpener opener;
    WebAuthPresenter presenter{opener, clock};
    GoogleSignIn google{{server.url(u"/authorize?hl=zh"_s), server.url(u"/token"_s), u"client+1"_s, {}}, presenter};
    std::stop_source stop;
    QString nonce;
    QUrlQuery form;
    int tokenStatus = 200;
    QByteArray tokenBody;
};

TEST_F(GoogleSignInTest, WholeWay) {
    auto attempt = begin();
    EXPECT_EQ(opener.opened.last().path(), u"/authorize"_s);
    EXPECT_EQ(asked(u"hl"_s), u"zh"_s);
    EXPECT_EQ(asked(u"response_type"_s), u"code"_s);
    EXPECT_EQ(asked(u"client_id"_s), u"client+1"_s);
    EXPECT_EQ(asked(u"code_challenge_method"_s), u"S256"_s);
    EXPECT_TRUE(asked(u"scope"_s).split(u' ').contains(u"openid"_s));
    EXPECT_TRUE(asked(u"redirect_uri"_s).startsWith(u"http://127.0.0.1:"_s));
    EXPECT_GE(asked(u"state"_s).size(), 32);
    EXPECT_NE(asked(u"state"_s), nonce);
    const QByteArray page = visit(u"code=a%2Fb%26c&state="_s + asked(u"state"_s));
    EXPECT_TRUE(page.startsWith("HTTP/1.1 200 "));
    EXPECT_TRUE(page.contains("登录信息已收到"));
    EXPECT_TRUE(page.contains("Referrer-Policy: no-referrer"));
    const auto outcome = await(std::move(attempt));
    ASSERT_TRUE(outcome);
    EXPECT_TRUE(idToken(nonce).contains(outcome->text.toLatin1()));

    const auto field = [&](const QString &name) {
        return form.queryItemValue(name, QUrl::FullyDecoded);
    };
    EXPECT_EQ(server.requests.back().headers["content-type"], "application/x-www-form-urlencoded");
    EXPECT_EQ(field(u"grant_type"_s), u"authorization_code"_s);
    EXPECT_EQ(field(u"code"_s), u"a/b&c"_s);
    EXPECT_EQ(field(u"client_id"_s), u"client+1"_s);
    EXPECT_EQ(field(u"redirect_uri"_s), asked(u"redirect_uri"_s));
    const QByteArray verifier = field(u"code_verifier"_s).toLatin1();
    EXPECT_GE(verifier.size(), 43);
    EXPECT_EQ(asked(u"code_challenge"_s).toLatin1(),
              QCryptographicHash::hash(verifier, QCryptographicHash::Sha256)
                  .toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals));
    EXPECT_EQ(send("GET / HTTP/1.1\r\n\r\n"), "") << "nobody listens any more";

    // Nothing of one attempt serves another.
    auto again = begin();
    const auto stateOf = [&](qsizetype at) {
        return QUrlQuery(opener.opened[at]).queryItemValue(u"state"_s);
    };
    EXPECT_NE(stateOf(0), stateOf(1));
    stop.request_stop();
    await(std::move(again));
}

TEST_F(GoogleSignInTest, TurnsOthersAway) {
    auto attempt = begin();
    const QUrl redirect(asked(u"redirect_uri"_s));
    const QByteArray host = "\r\nHost: 127.0.0.1:" + QByteArray::number(redirect.port()) + "\r\n\r\n";
    const QByteArray good = redirect.path().toLatin1() + "?code=c&state=" + asked(u"state"_s).toLatin1();
    struct Case {
        QByteArray request;
        int status;
    };
    for (const auto &[request, status] : std::initializer_list<Case>{
             {"GET /favicon.ico HTTP/1.1" + host, 404},
             {"POST " + good + " HTTP/1.1" + host, 404},
             {"GET " + good + " HTTP/1.1\r\nHost: evil.example\r\n\r\n", 404},
             {"GET " + good + "x HTTP/1.1" + host, 400},
             {"GET " + redirect.path().toLatin1() + "?code=c HTTP/1.1" + host, 400},
             {"GET " + redirect.path().toLatin1() + "?error=access_denied&state=x HTTP/1.1" + host, 400},
             {"GET " + redirect.path().toLatin1() + "?state=" + asked(u"state"_s).toLatin1() + " HTTP/1.1" + host, 400},
             {"nonsense\r\n\r\n", 400},
             {QByteArray(20'000, 'x'), 400},
         })
        EXPECT_TRUE(send(request).startsWith("HTTP/1.1 " + QByteArray::number(status))) << request.left(60).constData();
    EXPECT_TRUE(send("GET " + good + " HTTP/1.1" + host).startsWith("HTTP/1.1 200"));
    EXPECT_TRUE(await(std::move(attempt))) << "none of them ended the attempt";
}

TEST_F(GoogleSignInTest, EndsWithoutAToken) {
    struct Case {
        QString query; ///< what the browser brings; empty when it never comes
        int status;
        QByteArray body;
        Kind kind;
    };
    for (const auto &[query, status, body, kind] : std::initializer_list<Case>{
             {u"error=access_denied"_s, 200, {}, Kind::Cancelled},
             {u"error=server_error"_s, 200, {}, Kind::Provider},
             {u"code=c"_s, 400, R"({"error":"invalid_grant"})", Kind::Provider},
             {u"code=c"_s, 200, "{}", Kind::Provider},
             {u"code=c"_s, 200, R"({"id_token":"a.b"})", Kind::Provider},
             {u"code=c"_s, 200, idToken(u"another"_s), Kind::Provider},
             {u"code=c"_s, 200, "<html>", Kind::Provider},
             {{}, 200, {}, Kind::TimedOut},
         }) {
        tokenStatus = status;
        tokenBody = body;
        auto attempt = begin();
        if (query.isEmpty()) {
            settle();
            clock.advance(5min);
        } else {
            visit(query + u"&state="_s + asked(u"state"_s));
        }
        const auto outcome = await(std::move(attempt));
        ASSERT_FALSE(outcome) << query.toStdString() << body.constData();
        EXPECT_EQ(outcome.error().kind, kind) << query.toStdString() << body.constData();
        EXPECT_EQ(send("GET / HTTP/1.1\r\n\r\n"), "") << "nobody listens any more";
    }
}

TEST_F(GoogleSignInTest, CanBeCancelledAndShowsTheLinkItself) {
    for (const bool works : {false, true}) {
        opener.works = works;
        stop = {};
        QList<std::pair<QUrl, bool>> offered;
        const auto listening =
            QObject::connect(&presenter, &WebAuthPresenter::linkOffered,
                             [&](const QUrl &url, bool opened) { offered.push_back({url, opened}); });
        auto attempt = google.idToken(stop.get_token());
        ASSERT_EQ(offered.size(), 1);
        EXPECT_EQ(offered[0].first.path(), u"/authorize"_s);
        EXPECT_EQ(offered[0].second, works);
        stop.request_stop();
        const auto outcome = await(std::move(attempt));
        ASSERT_FALSE(outcome);
        EXPECT_EQ(outcome.error().kind, Kind::Cancelled);
        QObject::disconnect(listening);
    }
}

} // namespace lmp
