#include "app/SingleInstance.h"

#include "core/Json.h"
#include "platform/Log.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QThread>
#include <QTimer>
#include <QtEndian>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

constexpr unsigned long retryPause = 20; // ms
constexpr qsizetype mostArguments = 64;
constexpr qsizetype longestArgument = 4096;
/// What says that a handover was taken, and that it was but for the service it names.
constexpr char taken = '+';
constexpr char takenElsewhere = '~';

QString runtimeFolder() {
#ifdef Q_OS_MACOS
    // The place Qt names lies too deep for a socket's name.
    return QStandardPaths::writableLocation(QStandardPaths::TempLocation);
#else
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
#endif
}

/// Four bytes of length, most significant first, then JSON.
QByteArray framed(SingleInstance::Handover handover) {
    // What is longer than any link we follow leads nowhere, and the first one says so of its beginning.
    for (QString &argument : handover.arguments)
        argument.truncate(longestArgument);
    handover.arguments = handover.arguments.first(std::min(handover.arguments.size(), mostArguments));
    QByteArray body = Json::encode(handover);
    if (body.size() > SingleInstance::longestMessage) {
        handover.arguments = handover.arguments.first(std::min<qsizetype>(handover.arguments.size(), 1));
        handover.activationToken.clear();
        body = Json::encode(handover);
    }
    QByteArray frame(4, '\0');
    qToBigEndian(quint32(body.size()), frame.data());
    return frame + body;
}

} // namespace

SingleInstance::SingleInstance(const QString &profile, QString folder, QObject *parent)
    : QObject(parent) {
    if (folder.isEmpty())
        folder = runtimeFolder();
    const QByteArray digest = QCryptographicHash::hash(profile.toUtf8(), QCryptographicHash::Sha256).toHex();
    m_path = folder + u"/lumenpair-"_s + QString::number(::getuid()) + u'-' + QString::fromLatin1(digest.first(12));
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &SingleInstance::accept);
}

SingleInstance::~SingleInstance() {
    release();
}

void SingleInstance::release() {
    // The socket goes first: whoever finds the lock free must not find a socket that nobody reads.
    m_server.close();
    if (m_lock >= 0)
        ::close(std::exchange(m_lock, -1));
}

SingleInstance::Role SingleInstance::claim(const Handover &handover, std::chrono::milliseconds limit) {
    const QByteArray message = framed(handover);
    m_site = handover.site.value_or(QString());
    const QDeadlineTimer deadline(limit);
    // Again and again: the first one may only be starting, or be on its way out.
    while (true) {
        const Lock lock = takeLock();
        if (lock == Lock::Ours)
            listen();
        if (lock != Lock::Theirs)
            return Role::First;
        if (const auto role = handOver(message, std::chrono::milliseconds(deadline.remainingTime())))
            return *role;
        if (deadline.hasExpired())
            return Role::Unresponsive;
        QThread::msleep(retryPause);
    }
}

SingleInstance::Lock SingleInstance::takeLock() {
    if (m_lock < 0) {
        // Sticky, so that nobody who tidies the runtime folder takes it for a leftover.
        m_lock = ::open(QFile::encodeName(m_path + u".lock"_s).constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW,
                        S_IRUSR | S_IWUSR);
        if (m_lock >= 0)
            ::fchmod(m_lock, S_IRUSR | S_IWUSR | S_ISVTX);
    }
    if (m_lock >= 0 && ::flock(m_lock, LOCK_EX | LOCK_NB) == 0)
        return Lock::Ours;
    if (m_lock >= 0 && errno == EWOULDBLOCK)
        return Lock::Theirs;
    qCWarning(logApplication) << "whether the program is running already cannot be found out";
    return Lock::Impossible;
}

void SingleInstance::listen() {
    // With the lock in our hands, a socket that is there was left by somebody who is gone.
    const QString name = m_path + u".sock"_s;
    QLocalServer::removeServer(name);
    if (m_server.listen(name)) // open to the owner alone, but executable too
        ::chmod(QFile::encodeName(name).constData(), S_IRUSR | S_IWUSR);
    else
        qCWarning(logApplication) << "another start of the program will not be heard:" << m_server.errorString();
}

std::optional<SingleInstance::Role> SingleInstance::handOver(const QByteArray &message,
                                                             std::chrono::milliseconds left) const {
    const QDeadlineTimer deadline(left);
    const auto remaining = [&] {
        return int(std::max<qint64>(1, deadline.remainingTime()));
    };
    QLocalSocket socket;
    socket.connectToServer(m_path + u".sock"_s);
    if (!socket.waitForConnected(remaining()))
        return std::nullopt;
    socket.write(message);
    while (socket.bytesToWrite() > 0) {
        if (!socket.waitForBytesWritten(remaining()))
            return std::nullopt;
    }
    while (socket.bytesAvailable() == 0) {
        if (!socket.waitForReadyRead(remaining()))
            return std::nullopt;
    }
    const QByteArray answer = socket.read(1);
    if (answer == QByteArray(1, taken))
        return Role::HandedOver;
    return answer == QByteArray(1, takenElsewhere) ? std::optional(Role::OtherSite) : std::nullopt;
}

void SingleInstance::accept() {
    while (auto *socket = m_server.nextPendingConnection()) {
        socket->setReadBufferSize(4 + longestMessage);
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { read(socket); });
        // Nobody keeps us a connection open for nothing.
        QTimer::singleShot(patience, socket, [socket] { socket->abort(); });
        read(socket);
    }
}

void SingleInstance::read(QLocalSocket *socket) {
    if (socket->bytesAvailable() < 4)
        return;
    const auto length = qFromBigEndian<quint32>(socket->peek(4).constData());
    if (length > longestMessage) {
        socket->abort();
        return;
    }
    if (socket->bytesAvailable() < 4 + qint64(length))
        return;
    const auto handover = Json::decode<Handover>(socket->readAll().sliced(4, length));
    if (!handover) {
        socket->abort();
        return;
    }
    socket->write(QByteArray(1, handover->site.value_or(m_site) == m_site ? taken : takenElsewhere));
    socket->disconnectFromServer();
    Q_EMIT handedOver(*handover);
}

QString SingleInstance::unresponsiveText() {
    return u"Lumenpair 已经在运行，但没有回应。请稍等片刻再试；若一直如此，先结束它再打开。"_s;
}

QString SingleInstance::otherSiteText() {
    return u"Lumenpair 已经在运行，仍用原来的服务，这次指定的服务没有生效。要换服务，请先退出它再打开，或用 --profile 另开一份。"_s;
}

SingleInstance::Handover SingleInstance::ofThisProcess() {
    QString token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN");
    if (token.isEmpty())
        token = qEnvironmentVariable("DESKTOP_STARTUP_ID");
    return {.arguments = QCoreApplication::arguments().sliced(1), .activationToken = token.left(256)};
}

} // namespace lmp
