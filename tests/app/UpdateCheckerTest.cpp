#include "app/UpdateChecker.h"

#include "support/Await.h"
#include "support/StubServer.h"

#include <QPointer>

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Alert = UpdateChecker::Alert;

namespace {

class RecordingOpener : public ExternalOpener {
public:
    bool open(const QUrl &url) override {
        opened.push_back(url);
        return works;
    }
    QList<QUrl> opened;
    bool works = true;
};

const QString unknown = u"暂时查不到更新"_s;

} // namespace

class UpdateCheckerTest : public ::testing::Test {
protected:
    std::unique_ptr<UpdateChecker> make(URLSession session = UpdateChecker::manifestSession()) {
        return std::make_unique<UpdateChecker>(server.url(u"/dl/"_s), opener, UpdateChecker::Running{u"1.2.3"_s, 7},
                                               session);
    }
    static std::optional<Alert> ask(UpdateChecker &checker, bool userInitiated) {
        int ended = 0;
        const auto watch = QObject::connect(&checker, &UpdateChecker::checked, [&] { ++ended; });
        checker.check(userInitiated);
        EXPECT_TRUE(eventually([&] { return ended == 1; }));
        QObject::disconnect(watch);
        return checker.alert();
    }
    void serve(int status, const QByteArray &body, const QByteArray &headers = {}) {
        server.on("/dl/desktop/mac/latest.json", StubServer::reply(status, body, headers));
    }
    static Alert report(const QString &title, const QString &text) { return {title, text, {u"好"_s}}; }

    StubServer server;
    RecordingOpener opener;
};

TEST_F(UpdateCheckerTest, EveryOutcomeWhenThePersonAsksAndSilenceWhenNobodyDid) {
    const auto shape = u"数据格式对不上：Manifest"_s;
    struct Case {
        int status;
        QByteArray body;
        QByteArray headers;
        Alert alert;
    };
    for (const Case &c : std::initializer_list<Case>{
             {404, "", "", report(u"更新通道尚未开通"_s, u"发布物上传后这里会自动生效；现在用的是 1.2.3"_s)},
             {500, "", "", report(unknown, u"服务器回了 500，稍后再试。"_s)},
             {204, "", "", report(unknown, u"服务器回了 204，稍后再试。"_s)},
             {302, "", "Location: " + server.url(u"/elsewhere"_s).toEncoded() + "\r\n",
              report(unknown, u"服务器回了 302，稍后再试。"_s)},
             {200, "<html>", "", report(unknown, shape + u" 的 (根) 内容无法解析"_s)},
             {200, R"({"version":"2","url":"https://a.b/"})", "",
              report(unknown, shape + u" 要求字段「build」，服务端没给（位置 (根)）"_s)},
             {200, R"({"version":"9.9","build":7,"url":"https://a.b/"})", "",
              report(u"已是最新"_s, u"现在用的是 1.2.3"_s)},
             {200, R"({"version":"9.9","build":6,"url":"https://a.b/"})", "",
              report(u"已是最新"_s, u"现在用的是 1.2.3"_s)},
             {200, QByteArray(100'000, ' '), "", report(unknown, u"服务器给的更新清单太长，没有读完。"_s)},
         }) {
        SCOPED_TRACE(std::to_string(c.status) + c.body.left(60).toStdString());
        serve(c.status, c.body, c.headers);
        EXPECT_EQ(ask(*make(), true), c.alert);
        EXPECT_EQ(ask(*make(), false), std::nullopt);
    }
    for (const auto &request : server.requests)
        EXPECT_EQ(request.path, "/dl/desktop/mac/latest.json") << "nothing else is asked";
    EXPECT_EQ(server.requests.front().headers.value("cache-control"), "no-cache");
    EXPECT_TRUE(opener.opened.isEmpty());
}

TEST_F(UpdateCheckerTest, NoAnswer) {
    server.on("/dl/", [](const auto &, QTcpSocket &socket) { socket.abort(); });
    EXPECT_EQ(ask(*make(), true), report(unknown, APIError::network().reason));
    EXPECT_EQ(ask(*make(), false), std::nullopt);
    server.on("/dl/", [](const auto &, QTcpSocket &) {});
    auto session = UpdateChecker::manifestSession();
    EXPECT_EQ(session.requestTimeout, 15s);
    EXPECT_EQ(session.resourceTimeout, 15s);
    session.requestTimeout = session.resourceTimeout = 30ms;
    EXPECT_EQ(ask(*make(session), true), report(unknown, APIError::timedOut(APIError::Session::Normal).reason));
    UpdateChecker nowhere{QUrl(), opener};
    EXPECT_EQ(ask(nowhere, true), report(unknown, APIError::unusableURL().reason));
}

TEST_F(UpdateCheckerTest, ANewerBuildIsOfferedAndOpened) {
    serve(200, R"({"version":"0.1\n","build":8,"url":"https://a.b/dl?x=1","notes":" 修了些东西 "})");
    const auto checker = make();
    const Alert offer{u"有新版本 0.1"_s,
                      u"下载页面在 a.b\n修了些东西"_s,
                      {u"打开下载页面"_s, u"以后再说"_s},
                      QUrl(u"https://a.b/dl?x=1"_s),
                      false};
    EXPECT_EQ(ask(*checker, false), offer) << "the build alone decides";
    checker->choose(1);
    EXPECT_FALSE(checker->alert());
    EXPECT_TRUE(opener.opened.isEmpty());
    ask(*checker, true);
    EXPECT_TRUE(checker->isAlertAsked());
    checker->choose(0);
    EXPECT_EQ(opener.opened, QList{QUrl(u"https://a.b/dl?x=1"_s)});
    EXPECT_FALSE(checker->alert());
    checker->choose(0);
    EXPECT_EQ(opener.opened.size(), 1);

    opener.works = false;
    ask(*checker, true);
    checker->choose(0);
    ASSERT_TRUE(checker->alert());
    EXPECT_TRUE(checker->alertText().endsWith(u"https://a.b/dl?x=1"_s)) << "shown instead";
    checker->choose(0);
    EXPECT_FALSE(checker->alert());
    EXPECT_EQ(opener.opened.size(), 2);
}

TEST_F(UpdateCheckerTest, WhereThePageIsIsShownAsItIs) {
    for (const auto &[url, host] : std::initializer_list<std::pair<QByteArray, QString>>{
             {"https://a.b:8443/dl", u"a.b:8443"_s},
             {"https://\xd0\xb0pple.com/dl", u"xn--pple-43d.com"_s},
         }) {
        serve(200, R"({"version":"2","build":8,"url":")" + url + R"("})");
        EXPECT_EQ(ask(*make(), true)->text, u"下载页面在 "_s + host + u"\n现在用的是 1.2.3"_s);
    }
}

TEST_F(UpdateCheckerTest, AnAddressThatIsNotSafeIsNeverOffered) {
    const QByteArray endless = "https://good.example." + QByteArray("a.").repeated(120) + "evil.example/";
    for (const QByteArray &url :
         {endless, QByteArray("http://a.b/"), QByteArray("javascript:alert(1)"), QByteArray("file:///bin/sh"),
          QByteArray("https://"), QByteArray("a.b"), QByteArray(), QByteArray("https://good.example@evil.example/"),
          QByteArray("https://a b/"), QByteArray("HTTP://a.b")}) {
        SCOPED_TRACE(url.constData());
        serve(200, R"({"version":"2","build":8,"url":")" + url + R"("})");
        const auto checker = make();
        EXPECT_FALSE(ask(*checker, false));
        EXPECT_EQ(ask(*checker, true),
                  report(u"有新版本 2"_s, u"更新清单里的下载地址不是 https，所以这里不打开它。"_s));
        checker->choose(0);
        EXPECT_TRUE(opener.opened.isEmpty());
    }
}

TEST_F(UpdateCheckerTest, OncePerLaunchButWheneverAsked) {
    QPointer<QTcpSocket> held;
    server.on("/dl/", [&](const auto &, QTcpSocket &socket) { held = &socket; });
    const auto checker = make();
    checker->check(false);
    checker->check(false);
    ASSERT_TRUE(eventually([&] { return held; }));
    EXPECT_TRUE(checker->checkedThisLaunch());
    // The person asks while the automatic check is under way: one request, and an answer to the person.
    checker->check(true);
    held->write(StubServer::message(503, {}));
    EXPECT_TRUE(eventually([&] { return !checker->isChecking(); }));
    EXPECT_EQ(server.requests.size(), 1u);
    EXPECT_EQ(checker->alertTitle(), unknown);
    checker->dismiss();
    checker->check(false);
    settle();
    EXPECT_EQ(server.requests.size(), 1u);
    serve(404, {});
    EXPECT_TRUE(ask(*checker, true));
    EXPECT_EQ(server.requests.size(), 2u);
}

TEST_F(UpdateCheckerTest, GoesAwayInTheMiddle) {
    server.on("/dl/", [](const auto &, QTcpSocket &) {});
    auto checker = make();
    checker->check(true);
    ASSERT_TRUE(eventually([&] { return !server.requests.empty(); }));
    checker.reset();
    settle();
    EXPECT_EQ(server.requests.size(), 1u);
}

} // namespace lmp
