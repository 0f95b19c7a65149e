#include "identity/MemoryService.h"

#include "identity/MemoryTexts.h"

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

constexpr int conflictStatus = 409;

} // namespace

MemoryService::MemoryService(APIClient api)
    : m_api(std::move(api)) {}

QCoro::Task<Result<MemoryBundle>> MemoryService::load() const {
    return m_api.request<MemoryBundle>(u"/app/memory"_s);
}

QCoro::Task<Result<MemoryService::ExtractResp>> MemoryService::extract(const QList<ExtractMessage> &messages) const {
    return m_api.request<ExtractResp>(u"/app/memory/extract"_s, "POST", ExtractBody{messages}, true);
}

QCoro::Task<Result<MemoryService::ConfirmResp>> MemoryService::confirm(const QString &candidateId) const {
    return m_api.request<ConfirmResp>(u"/app/memory/candidate/confirm"_s, "POST", ConfirmBody{candidateId});
}

QCoro::Task<Result<APIClient::Empty>> MemoryService::dismiss(const QString &candidateId) const {
    return m_api.request<APIClient::Empty>(u"/app/memory/candidate/dismiss"_s, "POST", ConfirmBody{candidateId});
}

QCoro::Task<MemoryCorrectionOutcome> MemoryService::correct(const QString &memoryId, const QString &content,
                                                            const QString &expectedRevision) const {
    return corrected(
        m_api.request<CorrectResp>(u"/app/memory/correct"_s, "POST", CorrectBody{memoryId, content, expectedRevision}));
}

QCoro::Task<MemoryCorrectionOutcome> MemoryService::corrected(QCoro::Task<Result<CorrectResp>> pending) {
    const Result<CorrectResp> answer = co_await pending;
    if (answer)
        co_return {MemoryCorrectionOutcome::done{answer->previous, answer->revision}};
    if (answer.error().status == conflictStatus)
        co_return {MemoryCorrectionOutcome::conflict{}};
    co_return {MemoryCorrectionOutcome::unknown{}};
}

QCoro::Task<MemoryRevertOutcome> MemoryService::revert(const QString &memoryId, const QString &expectedRevision) const {
    return reverted(m_api.request<RevertResp>(u"/app/memory/revert"_s, "POST", RevertBody{memoryId, expectedRevision}));
}

QCoro::Task<MemoryRevertOutcome> MemoryService::reverted(QCoro::Task<Result<RevertResp>> pending) {
    const Result<RevertResp> answer = co_await pending;
    if (!answer && answer.error().status == conflictStatus)
        co_return {MemoryRevertOutcome::conflict{}};
    if (!answer)
        co_return {MemoryRevertOutcome::failed{MemoryTexts::revertNotConfirmed()}};
    if (answer->changed)
        co_return {MemoryRevertOutcome::done{answer->content, answer->revision}};
    co_return {MemoryRevertOutcome::unchanged{answer->note.value_or(MemoryTexts::nothingToRevert())}};
}

QCoro::Task<Result<APIClient::Empty>> MemoryService::freeze(const QString &memoryId, bool frozen) const {
    return m_api.request<APIClient::Empty>(u"/app/memory/freeze"_s, "POST", FreezeBody{memoryId, frozen});
}

QCoro::Task<Result<MemoryService::ForgetResp>> MemoryService::forget(const QString &memoryId) const {
    return m_api.request<ForgetResp>(u"/app/memory/forget"_s, "POST", ForgetBody{memoryId});
}

QCoro::Task<Result<APIClient::Empty>> MemoryService::restore(const MemoryItemDTO &item) const {
    return m_api.request<APIClient::Empty>(u"/app/memory/restore"_s, "POST", RestoreBody{item});
}

QCoro::Task<Result<MemoryHistoryResp>> MemoryService::history(const QString &memoryId) const {
    return m_api.request<MemoryHistoryResp>(u"/app/memory/history?memoryId="_s +
                                            QString::fromLatin1(QUrl::toPercentEncoding(memoryId)));
}

QCoro::Task<Result<APIClient::Empty>> MemoryService::resolveChapter(const QString &chapterId,
                                                                    const QString &decision) const {
    return m_api.request<APIClient::Empty>(u"/app/chapter/resolve"_s, "POST", ResolveBody{chapterId, decision});
}

} // namespace lmp
