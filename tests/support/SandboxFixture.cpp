#include "support/SandboxFixture.h"

#include <QCoreApplication>

namespace lmp {

using namespace Qt::StringLiterals;

struct SandboxLine {
    QString url;
};
BOOST_DESCRIBE_STRUCT(SandboxLine, (), (url))

QProcessEnvironment SandboxFixture::sandboxEnvironment() const {
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const QString &name : {u"LUMENPAIR_MODEL_URL"_s, u"LUMENPAIR_MODEL_KEY"_s, u"LUMENPAIR_MODEL"_s})
        environment.remove(name);
    return environment;
}

void SandboxFixture::SetUp() {
    m_sandbox.setProcessEnvironment(sandboxEnvironment());
    m_sandbox.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_sandbox.start(
        QCoreApplication::applicationDirPath() + u"/lumenpair-sandbox"_s,
        {u"--state"_s, m_folder.filePath(u"sandbox.sqlite"_s), u"--exit-with-parent"_s, u"--pace-ms"_s, u"0"_s});
    ASSERT_TRUE(m_sandbox.waitForReadyRead(20'000)) << m_sandbox.errorString().toStdString();
    const auto line = Json::decode<SandboxLine>(m_sandbox.readLine());
    ASSERT_TRUE(line);
    m_site = QUrl(line->url);
}

void SandboxFixture::TearDown() {
    m_sandbox.closeWriteChannel();
    EXPECT_TRUE(m_sandbox.waitForFinished(20'000));
}

APIClient SandboxFixture::client(const QString &token) const {
    return APIClient(m_site, [token] { return token.isEmpty() ? std::nullopt : std::optional(token); });
}

void SandboxFixture::fault(const QByteArray &rule) {
    ASSERT_TRUE(await(client().request<APIClient::Empty>(u"/sandbox/faults"_s, "DELETE")));
    if (rule.isEmpty())
        return;
    const auto value = Json::decode<boost::json::value>(rule);
    ASSERT_TRUE(value) << rule.constData();
    ASSERT_TRUE(await(client().request<APIClient::Empty>(u"/sandbox/faults"_s, "POST", *value)));
}

QString SandboxFixture::signIn(const QString &phone) {
    auto api = client();
    api.base = QUrl(m_site.toString() + u"/api"_s);
    const AuthService service(api);
    const auto sent = await(service.sendSms({.phone = phone, .dialCode = u"+86"_s}));
    EXPECT_TRUE(sent);
    const auto answer = await(service.smsLogin(
        {.phone = phone, .code = sent->devCode.value_or(QString()), .dialCode = u"+86"_s, .inviteCode = {}}));
    EXPECT_TRUE(answer);
    return answer ? answer->token : QString();
}

boost::json::value SandboxFixture::look(const QString &path, const QString &token) {
    const auto answer = await(client(token).getData(path));
    EXPECT_TRUE(answer) << path.toStdString();
    return answer ? Json::decode<boost::json::value>(answer->bytes).value_or(boost::json::value())
                  : boost::json::value();
}

} // namespace lmp
