#include "conversation/MemoryExtractService.h"

#include "conversation/ConversationDTO.h"

namespace lmp {

using namespace Qt::StringLiterals;

MemoryExtractService::Portion MemoryExtractService::Portion::of(const ConversationDTO &conversation, qsizetype from) {
    Portion portion{.body = {}, .upTo = from, .left = 0};
    auto &taken = portion.body.messages;
    qsizetype units = 0;
    for (qsizetype at = from; at < conversation.messages.size(); ++at) {
        const ConvMessageDTO &message = conversation.messages[at];
        const bool says = !message.text.trimmed().isEmpty();
        units += message.text.size();
        if (portion.left > 0 || (says && !taken.isEmpty() && (taken.size() == mostMessages || units > mostUnits))) {
            portion.left += says;
            continue;
        }
        if (says)
            taken.push_back({message.role == TalkRole::twin ? u"assistant"_s : u"user"_s, message.text});
        portion.upTo = at + 1;
    }
    return portion;
}

MemoryExtractService::MemoryExtractService(APIClient api)
    : m_api(std::move(api)) {}

QCoro::Task<Result<MemoryExtractService::Resp>> MemoryExtractService::extract(const Body &body) const {
    return m_api.request<Resp>(u"/app/memory/extract"_s, "POST", body, true);
}

} // namespace lmp
