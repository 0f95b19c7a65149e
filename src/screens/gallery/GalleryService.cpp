#include "screens/gallery/GalleryService.h"

#include <QTcpSocket>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

struct Refusal {
    QString error;
    QString reason;
};
BOOST_DESCRIBE_STRUCT(Refusal, (), (error, reason))

/// The whole request, once it is there: the target of its first line.
std::optional<QString> wholeTarget(const QByteArray &bytes) {
    const auto head = bytes.indexOf("\r\n\r\n");
    if (head < 0)
        return std::nullopt;
    const auto lines = bytes.first(head).split('\n');
    qsizetype length = 0;
    for (const QByteArray &line : lines) {
        if (line.toLower().startsWith("content-length:"))
            length = line.sliced(line.indexOf(':') + 1).trimmed().toLongLong();
    }
    if (bytes.size() < head + 4 + length)
        return std::nullopt;
    return QString::fromUtf8(lines.front().split(' ').value(1));
}

} // namespace

GalleryService::GalleryService() {
    m_server.listen(QHostAddress::LocalHost);
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        while (auto *socket = m_server.nextPendingConnection()) {
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            connect(socket, &QObject::destroyed, this, [this, socket] { m_partial.remove(socket); });
        }
    });
}

QString GalleryService::site() const {
    return m_server.isListening() ? u"http://127.0.0.1:%1"_s.arg(m_server.serverPort()) : QString();
}

void GalleryService::answer(const QString &path, Answer answer) {
    m_answers.insert(path, std::move(answer));
}

void GalleryService::refuse(const QString &path, int status, const QString &code, const QString &reason) {
    answer(path, Answer{.status = status, .body = Json::encode(Refusal{code, reason})});
}

void GalleryService::stream(const QString &path, const QByteArrayList &events, bool ends) {
    QByteArray body;
    for (const QByteArray &event : events)
        body += "data: " + event.simplified() + "\n\n";
    answer(path, Answer{.contentType = "text/event-stream", .body = body, .ends = ends});
}

void GalleryService::stall(const QString &path) {
    answer(path, Answer{.status = 0, .ends = false});
}

void GalleryService::read(QTcpSocket *socket) {
    QByteArray &partial = m_partial[socket];
    partial += socket->readAll();
    if (const auto target = wholeTarget(partial)) {
        partial.clear();
        write(socket, *target);
    }
}

void GalleryService::write(QTcpSocket *socket, const QString &target) {
    const QString path = target.section(u'?', 0, 0);
    if (!m_answers.contains(target) && !m_answers.contains(path)) {
        m_unknown.append(target);
        socket->write("HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
        socket->disconnectFromHost();
        return;
    }
    const Answer answer = m_answers.value(target, m_answers.value(path));
    if (answer.status == 0)
        return;
    QByteArray head = "HTTP/1.1 " + QByteArray::number(answer.status) +
                      " Gallery\r\nContent-Type: " + answer.contentType + "\r\nConnection: close\r\n";
    if (answer.ends)
        head += "Content-Length: " + QByteArray::number(answer.body.size()) + "\r\n";
    socket->write(head + "\r\n" + answer.body);
    if (answer.ends)
        socket->disconnectFromHost();
}

} // namespace lmp
