#pragma once

#include <QHash>
#include <QObject>
#include <QTcpServer>
#include <QTcpSocket>

#include <functional>
#include <vector>

namespace lmp {

/// An HTTP server that does as it is told, right or wrong: bytes are written as scripted, on a real socket of a free
/// port. Lives on the test's thread; answers through its event loop.
class StubServer : public QObject {
    Q_OBJECT
public:
    struct Request {
        QByteArray method;
        QByteArray path;                       ///< with its query
        QHash<QByteArray, QByteArray> headers; ///< names in lower case
        QByteArray body;
    };
    /// What a handler does to the connection: write, stall (do nothing), close, abort.
    using Handler = std::function<void(const Request &, QTcpSocket &)>;

    StubServer();

    QUrl url(const QString &path = {}) const;
    /// Handler of every request whose path begins with `prefix`; the longest prefix wins.
    void on(const QByteArray &prefix, Handler handler);
    /// All requests so far, in the order in which they were complete.
    std::vector<Request> requests;

    /// A complete answer with a Content-Length.
    static Handler reply(int status, QByteArray body, QByteArray extraHeaders = {});
    static QByteArray message(int status, const QByteArray &body, const QByteArray &extraHeaders = {});
    /// An event stream without a length that ends with the connection. The bytes are written in pieces of `piece`
    /// bytes, one for each turn of the event loop.
    static Handler events(QByteArray bytes, qsizetype piece = -1);

private:
    void read(QTcpSocket *socket);

    QHash<QByteArray, Handler> m_handlers;
    QHash<QTcpSocket *, QByteArray> m_partial;
    QTcpServer m_server; ///< last, since its sockets still report to the members above while it dies
};

} // namespace lmp
