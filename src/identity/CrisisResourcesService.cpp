#include "identity/CrisisResourcesService.h"

#include "core/PlainLabel.h"

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// No list of helplines is longer, and nobody reads one that is.
constexpr qsizetype mostItems = 100;

CrisisResourcesService::Resp shown(CrisisResourcesService::Resp resp) {
    resp.region = PlainLabel::line(resp.region);
    resp.guidance = PlainLabel::content(resp.guidance);
    resp.items.resize(std::min(resp.items.size(), mostItems));
    for (auto &item : resp.items) {
        item.name = PlainLabel::line(item.name);
        if (item.note)
            item.note = PlainLabel::lines(*item.note);
    }
    return resp;
}

} // namespace

CrisisResourcesService::CrisisResourcesService(APIClient api)
    : m_api(std::move(api)) {
    m_api.tokenProvider = {};
}

QCoro::Task<Result<CrisisResourcesService::Resp>> CrisisResourcesService::load(const QString &region) const {
    // Fetched raw, since the client reports every JSON answer that does not decode to telemetry, its path included.
    return decoded(
        m_api.getData(u"/app/crisis-resources?region="_s + QString::fromLatin1(QUrl::toPercentEncoding(region))));
}

QCoro::Task<Result<CrisisResourcesService::Resp>>
CrisisResourcesService::decoded(QCoro::Task<Result<APIClient::Data>> pending) {
    const Result<APIClient::Data> data = co_await pending;
    if (!data)
        co_return std::unexpected(data.error());
    auto resp = Json::decode<Resp>(data->bytes);
    if (!resp)
        co_return std::unexpected(APIError::undecodable(200, resp.error().describe(Json::typeName<Resp>())));
    co_return shown(*std::move(resp));
}

} // namespace lmp
