#pragma once

#include "core/APIClient.h"
#include "core/SSEStream.h"

#include <QUrl>

#include <stop_token>

namespace lmp {

/// The client of the service's event streams: one request, one stream, no reconnecting.
///
/// A copyable value; any thread with an event loop. Failures are those of APIClient in the same words: an unusable
/// address, an answer that is no HTTP, a non-2xx status (its error body decoded and kept), a time-out, a broken
/// connection. A line or an event beyond the parser's limits ends the stream like an answer that is no HTTP.
class SSEClient {
public:
    SSEClient(QUrl base, APIClient::TokenProvider tokenProvider);

    QUrl base;
    APIClient::TokenProvider tokenProvider;
    URLSession session = URLSession::events();

    /// Opens a stream without a body. Returns at once; the first pull tells what became of the request.
    /// @param stop ends the request early, from any thread
    SSEStream stream(const QString &path, const QByteArray &method = "GET", std::stop_token stop = {}) const;

    /// Opens a stream with a JSON body.
    /// @throws JsonEncodingError here and now when `body` has no JSON form
    template <class Body>
    SSEStream stream(const QString &path, const QByteArray &method, const Body &body, std::stop_token stop = {}) const {
        return open(path, method, Json::encode(body), std::move(stop));
    }

private:
    SSEStream open(const QString &path, const QByteArray &method, std::optional<QByteArray> body,
                   std::stop_token stop) const;
};

} // namespace lmp
