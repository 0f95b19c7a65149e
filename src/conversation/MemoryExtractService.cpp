#include "conversation/MemoryExtractService.h"

#include "conversation/ConversationDTO.h"

namespace lmp {

using namespace Qt::StringLiterals;

MemoryExtractService::Body MemoryExtractService::Body::of(const ConversationDTO &conversation, qsizetype from) {
    Body body;
    for (qsizetype at = from; at < conversation.messages.size(); ++at) {
        const ConvMessageDTO &message = conversation.messages[at];
        if (!message.text.trimmed().isEmpty())
            body.messages.push_back({message.role == TalkRole::twin ? u"assistant"_s : u"user"_s, message.text});
    }
    return body;
}

MemoryExtractService::MemoryExtractService(APIClient api)
    : m_api(std::move(api)) {}

QCoro::Task<Result<MemoryExtractService::Resp>> MemoryExtractService::extract(const Body &body) const {
    return m_api.request<Resp>(u"/app/memory/extract"_s, "POST", body, true);
}

} // namespace lmp
