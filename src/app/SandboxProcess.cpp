#include "app/SandboxProcess.h"

#include "core/Json.h"
#include "platform/Log.h"

#include <QCoreApplication>
#include <QTimer>

#include <unistd.h>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// For the one before to be gone for good.
constexpr auto restartPause = 200ms;

/// The one line that the service prints when it listens.
struct SandboxReady {
    QString url;
};
BOOST_DESCRIBE_STRUCT(SandboxReady, (), (url))

} // namespace

SandboxProcess::SandboxProcess(QString stateFile, QObject *parent)
    : QObject(parent)
    , m_stateFile(std::move(stateFile)) {
    // Ctrl-C on the terminal is meant for the reply, not for the service that gives it.
    m_process.setChildProcessModifier([] { ::setpgid(0, 0); });
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    connect(&m_process, &QProcess::readyReadStandardOutput, this, &SandboxProcess::onOutput);
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            m_address.resolve(std::unexpected(u"本机沙盒启动不了：找不到 lumenpair-sandbox，或它不能运行。"_s));
    });
    connect(&m_process, &QProcess::finished, this, &SandboxProcess::onFinished);
}

SandboxProcess::~SandboxProcess() {
    m_process.disconnect(this);
    m_address.resolve(std::unexpected(u"本机沙盒没有启动。"_s));
    // The end of its input is how it is asked to leave; what it has begun to write it finishes first.
    m_process.closeWriteChannel();
    if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(2000))
        m_process.kill();
}

Later<std::expected<QUrl, QString>> SandboxProcess::start() {
    launch();
    return m_address;
}

void SandboxProcess::launch() {
    const QString program = QCoreApplication::applicationDirPath() + u"/lumenpair-sandbox"_s;
    m_process.start(program,
                    {u"--state"_s, m_stateFile, u"--exit-with-parent"_s, u"--port"_s, QString::number(m_port)});
}

void SandboxProcess::onOutput() {
    if (!m_process.canReadLine())
        return;
    const auto ready = Json::decode<SandboxReady>(m_process.readLine());
    if (!ready) {
        m_address.resolve(std::unexpected(u"本机沙盒没有说出自己的地址。"_s));
        return;
    }
    const QUrl url(ready->url, QUrl::StrictMode);
    m_port = url.port(0);
    m_address.resolve(url);
}

void SandboxProcess::onFinished(int code) {
    m_address.resolve(std::unexpected(u"本机沙盒启动后就退出了（代码 %1）。"_s.arg(code)));
    if (m_port == 0 || m_restarts++ == mostRestarts)
        return;
    qCWarning(logApplication) << "the sandbox ended and is started again";
    QTimer::singleShot(restartPause, this, &SandboxProcess::launch);
}

} // namespace lmp
