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
    };
    /// What of a conversation is read at once.
    struct Portion {
        Body body;
        qsizetype upTo = 0; ///< the message behind the last one of it
        qsizetype left = 0; ///< messages with words from there on

        /// The messages from the one at `from` on, as many as are sent at once; those without words say nothing.
        static Portion of(const ConversationDTO &conversation, qsizetype from);
    };
    /// What a service is asked to read at once, one message at least: so many messages, and UTF-16 units of text.
    static constexpr qsizetype mostMessages = 200;
    static constexpr qsizetype mostUnits = 200'000;

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
