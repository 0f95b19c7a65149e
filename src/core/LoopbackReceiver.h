#pragma once

#include <QHash>
#include <QObject>
#include <QTcpServer>
#include <QUrl>

#include <optional>

class QTcpSocket;

namespace lmp {

/// Waits on 127.0.0.1 for the one request with which a browser comes back from an identity provider (RFC 8252, 7.3).
///
/// Owned by whoever waits; UI thread. It answers one GET path; a request whose state is not ours is turned away and the
/// wait goes on, so that another local program can neither end nor forge it. It listens no more once it has its answer.
class LoopbackReceiver : public QObject {
    Q_OBJECT
public:
    struct Callback {
        QString code;  ///< empty when the provider refused
        QString error; ///< the provider's word for why, e.g. "access_denied"
    };

    /// @param state the secret that the right request carries
    explicit LoopbackReceiver(QString state);

    /// False when the machine gave us no port.
    bool isListening() const { return m_server.isListening(); }
    /// Where the provider is to send the browser.
    QUrl redirectUri() const;
    const std::optional<Callback> &callback() const { return m_callback; }

Q_SIGNALS:
    /// `callback` is there; once.
    void arrived();

private:
    struct Reply {
        int status;
        QString text;
    };

    void accept();
    void read(QTcpSocket *socket);
    Reply replyTo(const QByteArray &head);
    static void write(QTcpSocket *socket, const Reply &reply);

    QString m_state;
    quint16 m_port = 0;
    std::optional<Callback> m_callback;
    QHash<QTcpSocket *, QByteArray> m_partial;
    QList<QTcpSocket *> m_oldestFirst; ///< all that are open
    QTcpServer m_server;               ///< last: its sockets report to the members above while it dies
};

} // namespace lmp
