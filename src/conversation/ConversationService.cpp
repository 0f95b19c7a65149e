#include "conversation/ConversationService.h"

namespace lmp {

using namespace Qt::StringLiterals;

ConversationService::ConversationService(APIClient api)
    : m_api(std::move(api)) {}

QCoro::Task<Result<ConversationService::ListResp>> ConversationService::list() const {
    return m_api.request<ListResp>(u"/app/conversations"_s);
}

QCoro::Task<Result<ConversationService::GetResp>> ConversationService::load(const QString &id) const {
    return m_api.request<GetResp>(u"/app/conversation?id="_s + id);
}

QCoro::Task<Result<ConversationService::SyncResp>>
ConversationService::sync(const ConversationDTO &conversation) const {
    return m_api.request<SyncResp>(u"/app/conversation/sync"_s, "POST", SyncBody{conversation});
}

QCoro::Task<Result<RetryResp>> ConversationService::retry(const RetryReq &request) const {
    // A model writes the answer meanwhile, which the normal session has no patience for.
    return m_api.request<RetryResp>(u"/app/conversation/retry"_s, "POST", request, true);
}

} // namespace lmp
