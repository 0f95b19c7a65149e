#pragma once

#include "core/URLSession.h"

#include <QElapsedTimer>
#include <QNetworkReply>
#include <QObject>
#include <QTimer>

#include <optional>
#include <vector>

namespace lmp {

/// One request and its answer, sent once and never again, redirects followed.
///
/// Made, used and destroyed on one thread with an event loop; destroying it ends the request. It ends exactly once,
/// whatever becomes of the reply underneath, and `ended` is never emitted from inside `start`, `stop` or a destructor.
/// Qt sends a request again by itself when a connection dies before the answer, and a turn sent twice is charged
/// twice; the body is therefore one that cannot be read again (see OneShotBody), for every method.
class HTTPExchange : public QObject {
    Q_OBJECT
public:
    struct Header {
        QByteArray name;
        QByteArray value;
        bool secret = false; ///< left behind when a redirect leads to another origin
    };
    /// Where a redirect may lead. One that is not followed is the answer. From https to http none ever is.
    enum class Redirects {
        Follow,
        Secure, ///< to https alone, also from http
    };
    struct Request {
        QByteArray method;
        QUrl url;
        std::vector<Header> headers;
        std::optional<QByteArray> body;
        Redirects redirects = Redirects::Follow;
    };
    enum class End {
        Complete, ///< the whole answer is there
        TimedOut,
        Failed,  ///< no connection, or it broke
        NotHTTP, ///< what came back was no HTTP
        TooLarge,
        Stopped
    };

    /// @param maxBytes longest answer in bytes, after decompression
    HTTPExchange(Request request, URLSession session, qint64 maxBytes);
    ~HTTPExchange() override;

    void start();
    /// Ends the exchange with `Stopped`, through the event loop. Nothing more is read.
    void stop();

    /// HTTP status, or none before the final answer's headers.
    std::optional<int> status() const { return m_status; }
    /// Set once it has ended.
    std::optional<End> end() const { return m_end; }
    /// Why it ended without a whole answer, in the words of its session; none while it runs and when it is complete.
    std::optional<APIError> failure() const;
    /// What has arrived and was not taken yet.
    QByteArray take();

Q_SIGNALS:
    void responded();
    void readyRead();
    void ended();

private:
    void send();
    void waitForConnectivity();
    void watchReply();
    void onHeaders();
    void onReadyRead();
    void onFinished();
    void heard() { m_heard.start(); }
    bool endedWithConnection(QNetworkReply::NetworkError error) const;
    void onSilence();
    bool redirect(int status);
    void release();
    void finish(End end);

    Request m_request;
    URLSession m_session;
    qint64 m_maxBytes;
    QNetworkReply *m_reply = nullptr;
    QByteArray m_rest; ///< bytes that were still in the reply when it was released
    std::optional<int> m_status;
    std::optional<End> m_end;
    qint64 m_taken = 0;  ///< bytes handed out so far
    qint64 m_length = 0; ///< as the headers announce it
    int m_hops = 0;
    QElapsedTimer m_heard; ///< since the service was last heard of, or the reader last made room
    QTimer m_silence;      ///< looks at m_heard now and then: an event restarts a clock, not a timer
    QTimer m_whole;
    QTimer m_connectivity;
};

} // namespace lmp
