#include "support/StubServer.h"

#include <QPointer>
#include <QTimer>
#include <QUrl>

namespace lmp {

using namespace Qt::StringLiterals;

StubServer::StubServer() {
    m_server.listen(QHostAddress::LocalHost);
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        while (auto *socket = m_server.nextPendingConnection()) {
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            connect(socket, &QObject::destroyed, this, [this, socket] { m_partial.remove(socket); });
        }
    });
}

QUrl StubServer::url(const QString &path) const {
    return QUrl(u"http://127.0.0.1:%1%2"_s.arg(m_server.serverPort()).arg(path));
}

void StubServer::on(const QByteArray &prefix, Handler handler) {
    m_handlers.insert(prefix, std::move(handler));
}

void StubServer::read(QTcpSocket *socket) {
    QByteArray &partial = m_partial[socket];
    partial += socket->readAll();
    const auto head = partial.indexOf("\r\n\r\n");
    if (head < 0)
        return;
    Request request;
    const auto lines = partial.first(head).split('\n');
    const auto words = lines.front().trimmed().split(' ');
    request.method = words.value(0);
    request.path = words.value(1);
    for (const QByteArray &line : lines.sliced(1)) {
        const auto colon = line.indexOf(':');
        request.headers.insert(line.first(colon).toLower(), line.sliced(colon + 1).trimmed());
    }
    const auto length = request.headers.value("content-length").toLongLong();
    if (partial.size() < head + 4 + length)
        return;
    request.body = partial.sliced(head + 4, length);
    partial.remove(0, head + 4 + length);
    requests.push_back(request);
    QByteArray best;
    for (const QByteArray &prefix : m_handlers.keys()) {
        if (request.path.startsWith(prefix) && prefix.size() >= best.size())
            best = prefix;
    }
    if (const auto handler = m_handlers.value(best))
        handler(request, *socket);
    else
        socket->write(message(404, "{\"error\":\"not_found\"}"));
}

QByteArray StubServer::message(int status, const QByteArray &body, const QByteArray &extraHeaders) {
    return "HTTP/1.1 " + QByteArray::number(status) + " Stub\r\nContent-Length: " + QByteArray::number(body.size()) +
           "\r\n" + extraHeaders + "\r\n" + body;
}

StubServer::Handler StubServer::reply(int status, QByteArray body, QByteArray extraHeaders) {
    return [=](const Request &, QTcpSocket &socket) {
        socket.write(message(status, body, extraHeaders));
    };
}

StubServer::Handler StubServer::events(QByteArray bytes, qsizetype piece) {
    return [=](const Request &, QTcpSocket &socket) {
        socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
        socket.write("HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\nConnection: close\r\n\r\n");
        if (piece < 0) {
            socket.write(bytes);
            socket.disconnectFromHost();
            return;
        }
        auto *timer = new QTimer(&socket);
        connect(timer, &QTimer::timeout, &socket, [&socket, timer, rest = bytes, piece]() mutable {
            socket.write(rest.first(qMin(piece, rest.size())));
            socket.flush();
            rest.remove(0, piece);
            if (rest.isEmpty()) {
                timer->stop();
                socket.disconnectFromHost();
            }
        });
        timer->start(0);
    };
}

} // namespace lmp
