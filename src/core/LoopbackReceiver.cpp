#include "core/LoopbackReceiver.h"

#include <QTcpSocket>
#include <QUrlQuery>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

constexpr auto callbackPath = "/callback"_L1;
/// A browser's request for this page is far below both.
constexpr qsizetype maxHead = 16384;
constexpr qsizetype maxSockets = 16;

/// As long for every wrong text as for the right one.
bool sameSecret(const QByteArray &a, const QByteArray &b) {
    unsigned difference = a.size() == b.size() ? 0 : 1;
    for (qsizetype at = 0; at < a.size() && at < b.size(); ++at)
        difference |= static_cast<unsigned char>(a[at] ^ b[at]);
    return difference == 0;
}

/// The value of a header in the lines after the request line; names are case-insensitive.
QByteArray headerOf(const QList<QByteArray> &lines, const char *name) {
    for (const QByteArray &line : lines) {
        const auto colon = line.indexOf(':');
        if (colon > 0 && line.first(colon).compare(name, Qt::CaseInsensitive) == 0)
            return line.sliced(colon + 1).trimmed();
    }
    return {};
}

} // namespace

LoopbackReceiver::LoopbackReceiver(QString state)
    : m_state(std::move(state)) {
    connect(&m_server, &QTcpServer::newConnection, this, &LoopbackReceiver::accept);
    if (m_server.listen(QHostAddress(QHostAddress::LocalHost)))
        m_port = m_server.serverPort();
}

QUrl LoopbackReceiver::redirectUri() const {
    return QUrl(u"http://127.0.0.1:%1%2"_s.arg(m_port).arg(callbackPath));
}

void LoopbackReceiver::accept() {
    while (auto *socket = m_server.nextPendingConnection()) {
        // The oldest makes room: whoever holds connections open without asking must not keep the browser out.
        if (m_oldestFirst.size() >= maxSockets)
            m_oldestFirst.front()->abort();
        m_oldestFirst.append(socket);
        m_partial.insert(socket, {});
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            m_partial.remove(socket);
            m_oldestFirst.removeOne(socket);
            socket->deleteLater();
        });
    }
}

void LoopbackReceiver::read(QTcpSocket *socket) {
    const auto found = m_partial.find(socket);
    if (found == m_partial.end())
        return;
    *found += socket->read(maxHead + 1 - found->size());
    const auto end = found->indexOf("\r\n\r\n");
    if (end < 0 && found->size() <= maxHead)
        return;
    const QByteArray head = end < 0 ? QByteArray() : found->first(end);
    // Whatever follows is no longer read.
    disconnect(socket, &QTcpSocket::readyRead, this, nullptr);
    const bool before = m_callback.has_value();
    write(socket, replyTo(head));
    if (m_callback && !before) {
        m_server.close();
        Q_EMIT arrived();
    }
}

LoopbackReceiver::Reply LoopbackReceiver::replyTo(const QByteArray &head) {
    QList<QByteArray> lines = head.split('\n');
    const QList<QByteArray> words = lines.takeFirst().trimmed().split(' ');
    if (words.size() != 3 || !words[2].startsWith("HTTP/1."))
        return {400, u"这个请求看不懂。"_s};
    const QUrl target = QUrl::fromEncoded("http://127.0.0.1" + words[1], QUrl::StrictMode);
    const bool ours = words[0] == "GET" && words[1].startsWith('/') && target.isValid() &&
                      target.path() == callbackPath &&
                      headerOf(lines, "Host") == "127.0.0.1:" + QByteArray::number(m_port);
    if (!ours)
        return {404, u"这里没有这一页。"_s};
    const QUrlQuery query(target);
    const auto field = [&](const QString &name) {
        return query.queryItemValue(name, QUrl::FullyDecoded);
    };
    if (m_callback || !sameSecret(field(u"state"_s).toUtf8(), m_state.toUtf8()))
        return {400, u"这次登录已经结束或不是从这里开始的，请回到 Lumenpair 再试一次。"_s};
    const Callback callback{field(u"code"_s), field(u"error"_s)};
    if (callback.code.isEmpty() == callback.error.isEmpty())
        return {400, u"登录的答复不完整，请回到 Lumenpair 再试一次。"_s};
    m_callback = callback;
    return {200, callback.error.isEmpty() ? u"登录信息已收到，可以关掉这一页，回到 Lumenpair。"_s
                                          : u"没有登录。可以关掉这一页，回到 Lumenpair。"_s};
}

void LoopbackReceiver::write(QTcpSocket *socket, const Reply &reply) {
    const QByteArray page = u"<!doctype html><html lang=\"zh-CN\"><meta charset=\"utf-8\"><title>Lumenpair</title>"
                            "<body style=\"font:16px/1.7 sans-serif;max-width:26em;margin:4em auto;padding:0 1em\">"
                            "<p>%1</p></html>"_s.arg(reply.text)
                                .toUtf8();
    // The address of this page holds the code: nobody further down the line is told it, and nothing keeps it.
    socket->write(
        "HTTP/1.1 " + QByteArray::number(reply.status) +
        " Lumenpair\r\nContent-Type: text/html; charset=utf-8\r\nContent-Length: " + QByteArray::number(page.size()) +
        "\r\nCache-Control: no-store\r\nReferrer-Policy: no-referrer\r\n"
        "Content-Security-Policy: default-src 'none'; style-src 'unsafe-inline'\r\nConnection: close\r\n\r\n" +
        page);
    // The receiver may be gone in a moment; the system delivers what it has been given.
    socket->flush();
    socket->disconnectFromHost();
}

} // namespace lmp
