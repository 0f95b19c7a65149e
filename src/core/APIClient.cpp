#include "core/APIClient.h"

#include "core/HTTPCall.h"
#include "core/RequestURL.h"
#include "platform/Log.h"

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

APIClient::APIClient(QUrl baseURL, TokenProvider provider)
    : base(std::move(baseURL))
    , tokenProvider(std::move(provider)) {}

std::vector<HTTPExchange::Header> APIClient::tokenHeaders() const {
    const auto token = tokenProvider ? tokenProvider() : std::nullopt;
    if (!token)
        return {};
    // RFC 9110, 5.5: anything else would end the header or begin another.
    const bool visible = std::ranges::all_of(*token, [](QChar c) { return c > u' ' && c < u'\x7f'; });
    if (token->isEmpty() || !visible) {
        qCWarning(logSession) << "the session token cannot be sent as a header and was left out";
        return {};
    }
    const QByteArray bytes = token->toLatin1();
    return {{"X-Access-Token", bytes, true}, {"Authorization", "Bearer " + bytes, true}};
}

QCoro::Task<Result<APIClient::Data>> APIClient::getData(const QString &path, bool slow) const {
    return [](QCoro::Task<Result<Answer>> pending) -> QCoro::Task<Result<Data>> {
        Result<Answer> answer = co_await pending;
        if (!answer)
            co_return std::unexpected(answer.error());
        if (answer->status < 200 || answer->status > 299)
            co_return std::unexpected(APIError::fromAnswer(answer->status, answer->body, APIError::Currency::Drop));
        co_return Data{std::move(answer->body)};
    }(send({.path = path, .slow = slow, .json = false}, maxDataBytes));
}

QCoro::Task<Result<APIClient::Answer>> APIClient::send(Call call, qint64 maxBytes) const {
    auto url = RequestURL::join(base, call.path);
    if (!url)
        return refused(url.error());
    HTTPExchange::Request request{call.method, *url, {}, std::move(call.body)};
    if (call.json)
        request.headers.push_back({"Accept", "application/json"});
    if (request.body)
        request.headers.push_back({"Content-Type", "application/json"});
    std::ranges::move(tokenHeaders(), std::back_inserter(request.headers));
    // A raw download reports every time-out in the normal session's words.
    URLSession chosen = call.slow ? slowSession : session;
    if (!call.json)
        chosen.kind = APIError::Session::Normal;
    return exchange(std::move(request), std::move(chosen), maxBytes, std::move(call.stop));
}

QCoro::Task<Result<APIClient::Answer>> APIClient::exchange(HTTPExchange::Request request, URLSession session,
                                                           qint64 maxBytes, std::stop_token stop) {
    auto outcome = co_await HTTPCall::run(std::move(request), std::move(session), maxBytes, std::move(stop));
    // The status of an answer that is too long to read is known all the same, and says more than its body.
    if (outcome.end == HTTPExchange::End::Complete || outcome.end == HTTPExchange::End::TooLarge)
        co_return Answer{*outcome.status, std::move(outcome.body)};
    co_return std::unexpected(*outcome.failure);
}

QCoro::Task<Result<APIClient::Answer>> APIClient::refused(APIError error) {
    co_return std::unexpected(error);
}

APIError APIClient::undecodable(const JsonFailure &failure, const QString &type, const QString &path, int status) {
    const QString description = failure.describe(type);
    DecodeFailureSink::report(path, description, status);
    return APIError::undecodable(status, description);
}

} // namespace lmp
