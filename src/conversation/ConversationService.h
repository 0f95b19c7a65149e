#pragma once

#include "conversation/ConversationDTO.h"
#include "conversation/ConversationSummaryDTO.h"
#include "conversation/RetryReq.h"
#include "conversation/RetryResp.h"
#include "core/APIClient.h"

namespace lmp {

/// Lists, loads and saves conversations, and asks for a fresh answer to a message.
///
/// A value that holds the client and nothing else; any thread with an event loop. Fails with the client's APIError,
/// unchanged; nothing is sent twice.
class ConversationService {
public:
    struct ListResp {
        QList<ConversationSummaryDTO> conversations;
    };
    struct GetResp {
        ConversationDTO conversation;
    };
    struct SyncBody {
        ConversationDTO conversation;
    };
    struct SyncResp {
        bool ok = false;
        std::optional<qint64> revision;
    };

    explicit ConversationService(APIClient api);

    /// Every conversation; there are no pages.
    QCoro::Task<Result<ListResp>> list() const;
    /// @param id appended to the address as it stands. One that holds '&' or '#' asks for something else: whoever opens
    /// the answer compares its id.
    QCoro::Task<Result<GetResp>> load(const QString &id) const;
    /// @param conversation with the revision it was last known to have; 409 when the service holds a newer one
    QCoro::Task<Result<SyncResp>> sync(const ConversationDTO &conversation) const;
    /// Takes as long as a reply takes.
    QCoro::Task<Result<RetryResp>> retry(const RetryReq &request) const;

private:
    APIClient m_api;
};
BOOST_DESCRIBE_STRUCT(ConversationService::ListResp, (), (conversations))
BOOST_DESCRIBE_STRUCT(ConversationService::GetResp, (), (conversation))
BOOST_DESCRIBE_STRUCT(ConversationService::SyncBody, (), (conversation))
BOOST_DESCRIBE_STRUCT(ConversationService::SyncResp, (), (ok, revision))

} // namespace lmp
