#include "core/SSEClient.h"

#include "core/RequestURL.h"

#include <algorithm>

namespace lmp {

SSEClient::SSEClient(QUrl baseURL, APIClient::TokenProvider provider)
    : base(std::move(baseURL))
    , tokenProvider(std::move(provider)) {}

SSEStream SSEClient::stream(const QString &path, const QByteArray &method, std::stop_token stop) const {
    return open(path, method, std::nullopt, std::move(stop));
}

SSEStream SSEClient::open(const QString &path, const QByteArray &method, std::optional<QByteArray> body,
                          std::stop_token stop) const {
    const auto url = RequestURL::join(base, path);
    if (!url)
        return SSEStream(std::unexpected(url.error()), session, std::move(stop));
    HTTPExchange::Request request{method, *url, {{"Accept", "text/event-stream"}}, std::move(body)};
    if (request.body)
        request.headers.push_back({"Content-Type", "application/json"});
    std::ranges::move(APIClient(base, tokenProvider).tokenHeaders(), std::back_inserter(request.headers));
    return SSEStream(std::move(request), session, std::move(stop));
}

} // namespace lmp
