#include "core/HTTPExchange.h"

#include "core/OneShotBody.h"
#include "core/RequestURL.h"

#include <utility>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int maxRedirects = 16;

/// Errors that only repeat what the status says already; the answer itself is whole. On a status that is no error they
/// mean something else: a body that did not decompress is told in the same words.
bool isStatusError(int status, QNetworkReply::NetworkError error) {
    if (status < 400 || error == QNetworkReply::ContentReSendError)
        return false;
    return error == QNetworkReply::ProxyAuthenticationRequiredError || // what Qt calls a 407
           (error >= QNetworkReply::ContentAccessDenied && error <= QNetworkReply::UnknownContentError) ||
           error == QNetworkReply::ProtocolInvalidOperationError || // what Qt calls a 400
           (error >= QNetworkReply::InternalServerError && error <= QNetworkReply::UnknownServerError);
}

bool isProtocolError(QNetworkReply::NetworkError error) {
    return error >= QNetworkReply::ProtocolUnknownError && error <= QNetworkReply::ProtocolFailure;
}

} // namespace

HTTPExchange::HTTPExchange(Request request, URLSession session, qint64 maxBytes)
    : m_request(std::move(request))
    , m_session(std::move(session))
    , m_maxBytes(maxBytes) {
    m_silence.setSingleShot(true);
    m_whole.setInterval(m_session.resourceTimeout);
    m_whole.setSingleShot(true);
    m_connectivity.setInterval(1s);
    connect(&m_silence, &QTimer::timeout, this, &HTTPExchange::onSilence);
    connect(&m_whole, &QTimer::timeout, this, [this] { finish(End::TimedOut); });
    connect(&m_connectivity, &QTimer::timeout, this, &HTTPExchange::waitForConnectivity);
}

HTTPExchange::~HTTPExchange() {
    release();
}

void HTTPExchange::start() {
    if (m_session.resourceTimeout > 0ms)
        m_whole.start();
    waitForConnectivity();
}

void HTTPExchange::stop() {
    release();
    QMetaObject::invokeMethod(this, [this] { finish(End::Stopped); }, Qt::QueuedConnection);
}

std::optional<APIError> HTTPExchange::failure() const {
    if (!m_end || *m_end == End::Complete)
        return std::nullopt;
    switch (*m_end) {
    case End::TimedOut:
        return APIError::timedOut(m_session.kind);
    case End::NotHTTP:
        return APIError::invalidResponse();
    default:
        return APIError::network();
    }
}

QByteArray HTTPExchange::take() {
    QByteArray bytes = std::exchange(m_rest, {});
    if (m_reply)
        bytes += m_reply->readAll();
    m_taken += bytes.size();
    if (!bytes.isEmpty())
        heard();
    return bytes;
}

void HTTPExchange::waitForConnectivity() {
    if (!RequestURL::isLoopback(m_request.url) && m_session.online && !m_session.online()) {
        m_connectivity.start();
        return;
    }
    m_connectivity.stop();
    send();
}

void HTTPExchange::send() {
    QNetworkRequest request(m_request.url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    // A kept connection may be dead by the next turn, which would then end unknown for nothing.
    request.setRawHeader("Connection", "close");
    for (const Header &header : m_request.headers)
        request.setRawHeader(header.name, header.value);
    auto &manager = m_session.manager();
    const QByteArray body = m_request.body.value_or(QByteArray());
    request.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
    request.setHeader(QNetworkRequest::ContentLengthHeader, body.size());
    auto *oneShot = new OneShotBody(body);
    m_reply = manager.sendCustomRequest(request, m_request.method, oneShot);
    oneShot->setParent(m_reply);
    // A request with a body of its own kind starts through the event loop, and the limit is lost on a reply that has
    // not started.
    QMetaObject::invokeMethod(
        m_reply, [reply = m_reply, limit = m_session.readBuffer] { reply->setReadBufferSize(limit); },
        Qt::QueuedConnection);
    watchReply();
    heard();
    m_silence.start(m_session.requestTimeout);
}

void HTTPExchange::watchReply() {
    connect(m_reply, &QNetworkReply::metaDataChanged, this, &HTTPExchange::onHeaders);
    connect(m_reply, &QNetworkReply::readyRead, this, &HTTPExchange::onReadyRead);
    connect(m_reply, &QNetworkReply::uploadProgress, this, &HTTPExchange::heard);
    // Queued, since a reply may finish inside the call that made it.
    connect(m_reply, &QNetworkReply::finished, this, &HTTPExchange::onFinished, Qt::QueuedConnection);
    // A manager that dies with its thread deletes its replies and finishes none of them.
    connect(m_reply, &QObject::destroyed, this, [this] {
        m_reply = nullptr;
        finish(End::Failed);
    });
}

void HTTPExchange::onHeaders() {
    heard();
    const QVariant status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (m_status || !status.isValid() || status.toInt() < 200 || redirect(status.toInt()))
        return;
    m_status = status.toInt();
    m_length = m_reply->header(QNetworkRequest::ContentLengthHeader).toLongLong();
    Q_EMIT responded();
}

void HTTPExchange::onReadyRead() {
    heard();
    if (!m_status)
        return;
    if (m_length > m_maxBytes || m_taken + m_reply->bytesAvailable() > m_maxBytes) {
        finish(End::TooLarge);
        return;
    }
    Q_EMIT readyRead();
}

bool HTTPExchange::endedWithConnection(QNetworkReply::NetworkError error) const {
    // A body without a length ends with its connection (RFC 9112, 6.3). Qt may take that end for a loss, and finds that
    // it cannot send the request again. Decompression hides a length, so that one is never taken on trust.
    return m_status && error == QNetworkReply::ContentReSendError && !m_reply->hasRawHeader("Content-Length") &&
           !m_reply->hasRawHeader("Transfer-Encoding") && !m_reply->hasRawHeader("Content-Encoding");
}

void HTTPExchange::onFinished() {
    if (!m_reply || sender() != m_reply)
        return;
    const auto error = m_reply->error();
    if (error == QNetworkReply::NoError || (m_status && isStatusError(*m_status, error)) || endedWithConnection(error))
        finish(m_status ? End::Complete : End::NotHTTP);
    else if (!m_status && isProtocolError(error))
        finish(End::NotHTTP);
    else
        finish(End::Failed);
}

void HTTPExchange::onSilence() {
    // Where the buffer is bounded, a reader that leaves it full holds the sender back and makes the silence itself.
    if (m_reply && m_session.readBuffer > 0 && m_reply->bytesAvailable() >= m_session.readBuffer / 2)
        heard();
    const std::chrono::milliseconds left = m_session.requestTimeout - std::chrono::milliseconds(m_heard.elapsed());
    if (left > 0ms)
        m_silence.start(left);
    else
        finish(End::TimedOut);
}

bool HTTPExchange::redirect(int status) {
    const bool again = status == 307 || status == 308;
    if (!again && status != 301 && status != 302 && status != 303)
        return false;
    const QByteArray location = m_reply->rawHeader("Location");
    const QUrl target = m_request.url.resolved(QUrl::fromEncoded(location, QUrl::StrictMode));
    const bool secureOnly = m_request.url.scheme() == "https"_L1 || m_request.redirects == Redirects::Secure;
    const bool followed = !location.isEmpty() && target.isValid() && !target.host().isEmpty() &&
                          (!secureOnly || target.scheme() == "https"_L1) &&
                          (target.scheme() == "http"_L1 || target.scheme() == "https"_L1);
    if (!followed)
        return false;
    release();
    if (++m_hops > maxRedirects) {
        QMetaObject::invokeMethod(this, [this] { finish(End::Failed); }, Qt::QueuedConnection);
        return true;
    }
    if (!RequestURL::sameOrigin(m_request.url, target))
        std::erase_if(m_request.headers, [](const Header &header) { return header.secret; });
    // RFC 9110, 15.4: a POST that moved becomes a GET, and 303 turns everything but HEAD into one.
    if (!again && m_request.method != "GET" && (status == 303 || m_request.method == "POST")) {
        m_request.method = "GET"_ba;
        m_request.body.reset();
        std::erase_if(m_request.headers, [](const Header &header) { return header.name == "Content-Type"; });
    }
    m_request.url = target;
    send();
    return true;
}

void HTTPExchange::release() {
    m_silence.stop();
    m_connectivity.stop();
    if (auto *reply = std::exchange(m_reply, nullptr)) {
        // abort() finishes the reply on the spot; nobody is to hear of that.
        reply->disconnect(this);
        reply->abort();
        reply->deleteLater();
    }
}

void HTTPExchange::finish(End end) {
    if (m_end)
        return;
    m_end = end;
    m_whole.stop();
    if (m_reply && end != End::TooLarge)
        m_rest += m_reply->readAll();
    release();
    Q_EMIT ended();
}

} // namespace lmp
