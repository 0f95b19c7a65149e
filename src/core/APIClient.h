#pragma once

#include "core/DecodeFailureSink.h"
#include "core/HTTPExchange.h"
#include "core/Json.h"
#include "core/PoolAwaiter.h"
#include "core/Result.h"

#include <QCoroTask>
#include <QUrl>

#include <functional>
#include <optional>
#include <stop_token>

namespace lmp {

/// The one client of the service's JSON API: joins a path to the base, attaches the token, sends once, and comes back
/// with a decoded record or an APIError whose reason is fit to be shown.
///
/// A copyable value without state of its own; every service holds a copy. Any thread with an event loop may call it;
/// the answer arrives on the calling thread. Nothing is retried.
class APIClient {
public:
    /// A record without fields: the answer nobody needs, and the body "{}".
    struct Empty {
        bool operator==(const Empty &) const = default;
    };
    /// The current session token, or none; called once for each request, on the calling thread.
    using TokenProvider = std::function<std::optional<QString>()>;
    struct Answer {
        int status = 0;
        QByteArray body;
    };
    /// A download. (A bare QByteArray inside std::expected is ambiguous with null for QCoro's own checks.)
    struct Data {
        QByteArray bytes;
    };
    struct Call {
        QString path; ///< below the base, with its query
        QByteArray method = "GET";
        std::optional<QByteArray> body = {}; ///< encoded JSON
        bool slow = false;
        bool json = true;          ///< sends "Accept: application/json"
        std::stop_token stop = {}; ///< ends the request early; the call then fails like a broken connection
    };

    /// Answers longer than this are refused: 64 MiB of JSON, 512 MiB of download.
    static constexpr qint64 maxJsonBytes = 64ll * 1024 * 1024;
    static constexpr qint64 maxDataBytes = 512ll * 1024 * 1024;

    APIClient(QUrl base, TokenProvider tokenProvider);

    QUrl base;
    TokenProvider tokenProvider;
    URLSession session = URLSession::normal();
    URLSession slowSession = URLSession::slow();

    /// A call without a body.
    template <class T>
    QCoro::Task<Result<T>> request(const QString &path, const QByteArray &method = "GET", bool slow = false,
                                   std::stop_token stop = {}) const {
        return decoded<T>(send({.path = path, .method = method, .slow = slow, .stop = std::move(stop)}, maxJsonBytes),
                          path);
    }

    /// A call with a JSON body.
    /// @throws JsonEncodingError here and now when `body` has no JSON form
    template <class T, class Body>
    QCoro::Task<Result<T>> request(const QString &path, const QByteArray &method, const Body &body, bool slow = false,
                                   std::stop_token stop = {}) const {
        return decoded<T>(
            send({.path = path, .method = method, .body = Json::encode(body), .slow = slow, .stop = std::move(stop)},
                 maxJsonBytes),
            path);
    }

    /// A raw GET: the bytes of a 2xx answer as they came. Errors leave the currency fields empty.
    QCoro::Task<Result<Data>> getData(const QString &path, bool slow = false) const;

    /// The headers that carry the session token: none without a token, or with one that no header can hold.
    std::vector<HTTPExchange::Header> tokenHeaders() const;

private:
    /// Bodies above this are decoded off the calling thread.
    static constexpr qsizetype poolThreshold = 64 * 1024;

    QCoro::Task<Result<Answer>> send(Call call, qint64 maxBytes) const;
    static QCoro::Task<Result<Answer>> exchange(HTTPExchange::Request request, URLSession session, qint64 maxBytes,
                                                std::stop_token stop);
    static QCoro::Task<Result<Answer>> refused(APIError error);
    static APIError undecodable(const JsonFailure &failure, const QString &type, const QString &path, int status);

    template <class T>
    static QCoro::Task<Result<T>> decoded(QCoro::Task<Result<Answer>> pending, QString path) {
        const Result<Answer> answer = co_await pending;
        if (!answer)
            co_return std::unexpected(answer.error());
        if (answer->status < 200 || answer->status > 299)
            co_return std::unexpected(APIError::fromAnswer(answer->status, answer->body));
        std::expected<T, JsonFailure> record;
        if (answer->body.size() > poolThreshold)
            record = co_await PoolAwaiter([body = answer->body] { return Json::decode<T>(body); });
        else
            record = Json::decode<T>(answer->body);
        if (!record)
            co_return std::unexpected(undecodable(record.error(), Json::typeName<T>(), path, answer->status));
        co_return *std::move(record);
    }
};
BOOST_DESCRIBE_STRUCT(APIClient::Empty, (), ())

} // namespace lmp
