#pragma once

#include "core/APIClient.h"
#include "identity/MemoryCandidateDTO.h"

namespace lmp {

struct ConversationDTO;

/// Has the service read a conversation for what is worth remembering; charged. What it finds is only proposed.
///
/// A value that holds the client and nothing else; any thread with an event loop. Nothing is sent twice.
class MemoryExtractService {
public:
    struct Body {
        struct Turn {
            QString role; ///< "assistant" for the twin, "user" for its owner
            QString content;
        };
        QList<Turn> messages;

        /// The messages of a conversation from the one at `from` on; those without words say nothing.
        static Body of(const ConversationDTO &conversation, qsizetype from);
    };
    struct Resp {
        QList<MemoryCandidateDTO> candidates;
        qint64 pipCharged = 0;          ///< Pip
        std::optional<QString> skipped; ///< why nothing was proposed
    };

    explicit MemoryExtractService(APIClient api);

    /// Takes as long as a reply takes.
    QCoro::Task<Result<Resp>> extract(const Body &body) const;

private:
    APIClient m_api;
};
BOOST_DESCRIBE_STRUCT(MemoryExtractService::Body::Turn, (), (role, content))
BOOST_DESCRIBE_STRUCT(MemoryExtractService::Body, (), (messages))
BOOST_DESCRIBE_STRUCT(MemoryExtractService::Resp, (), (candidates, pipCharged, skipped))

} // namespace lmp
