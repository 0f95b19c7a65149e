#include "core/LoopbackReceiver.h"

#include "support/Await.h"

#include <QTcpSocket>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace lmp {

using namespace Qt::StringLiterals;

class LoopbackReceiverTest : public ::testing::Test {
protected:
    /// The status that a request gets, or 0 when the connection ends without one.
    int ask(const QByteArray &request) {
        QTcpSocket browser;
        browser.connectToHost(QHostAddress::LocalHost, quint16(m_receiver.redirectUri().port()));
        if (!eventually([&] { return browser.state() != QAbstractSocket::ConnectingState; }) || !browser.isOpen())
            return 0;
        browser.write(request);
        QByteArray answer;
        QObject::connect(&browser, &QTcpSocket::readyRead, [&] { answer += browser.readAll(); });
        EXPECT_TRUE(eventually([&] { return browser.state() == QAbstractSocket::UnconnectedState; }));
        return answer.startsWith("HTTP/1.1 ") ? answer.mid(9, 3).toInt() : 0;
    }
    QByteArray get(const QByteArray &target) const {
        return "GET " + target + " HTTP/1.1\r\nhost: 127.0.0.1:" + QByteArray::number(m_receiver.redirectUri().port()) +
               "\r\n\r\n";
    }

    LoopbackReceiver m_receiver{u"right"_s};
};

TEST_F(LoopbackReceiverTest, TurnsEverythingAwayButTheAnswerOnce) {
    ASSERT_TRUE(m_receiver.isListening());
    int arrived = 0;
    QObject::connect(&m_receiver, &LoopbackReceiver::arrived, [&] { ++arrived; });
    struct Case {
        QByteArray request;
        int status;
    };
    const QByteArray right = get("/callback?code=a%2Fb&state=right");
    for (const auto &[request, status] : std::initializer_list<Case>{
             {get("/"), 404},
             {get("/favicon.ico"), 404},
             {get("/callbackx?code=x&state=right"), 404},
             {get("//callback?code=x&state=right"), 404},
             {get("http://127.0.0.1/callback?code=x&state=right"), 404},
             {QByteArray(right).replace("GET", "POST"), 404},
             {QByteArray(right).replace("host: 127.0.0.1", "host: evil.example"), 404},
             {get("/callback?code=x"), 400},
             {get("/callback?code=x&state=wrong"), 400},
             {get("/callback?code=x&state="), 400},
             {get("/callback?code=x&state=righ"), 400},
             {get("/callback?error=access_denied&state=wrong"), 400},
             {get("/callback?state=right"), 400},
             {get("/callback?code=x&error=y&state=right"), 400},
             {QByteArray("\0\xff\r\n\r\n", 6), 400},
             {"\r\n\r\n", 400},
             {QByteArray(40'000, 'A'), 400},
         }) {
        EXPECT_EQ(ask(request), status) << request.left(80).constData();
        EXPECT_FALSE(m_receiver.callback()) << request.left(80).constData();
    }
    EXPECT_EQ(arrived, 0);

    // Connections held open without a word do not keep the browser out.
    std::vector<std::unique_ptr<QTcpSocket>> held;
    for (int at = 0; at < 20; ++at) {
        held.push_back(std::make_unique<QTcpSocket>());
        held.back()->connectToHost(QHostAddress::LocalHost, quint16(m_receiver.redirectUri().port()));
        ASSERT_TRUE(eventually([&] { return held.back()->state() == QAbstractSocket::ConnectedState; }));
    }
    EXPECT_EQ(ask(right), 200);
    ASSERT_TRUE(m_receiver.callback());
    EXPECT_EQ(m_receiver.callback()->code, u"a/b"_s);
    EXPECT_EQ(arrived, 1);
    // It listens no more.
    EXPECT_EQ(ask(right), 0);
}

} // namespace lmp
