#pragma once

#include "conversation/RelayChatRequest.h"

namespace lmp {

/// What the streaming route is asked: the plain question, and the surface it comes from.
struct RelayChatStreamRequest {
    using Turn = RelayTurn;

    QList<Turn> messages; ///< oldest first
    qint64 maxTokens = 0;
    std::optional<QString> companion;
    bool incognito = false; ///< nothing is kept: no history, no memories
    std::optional<QString> mode;
    QString surface; ///< passed through as the opening screen gives it

    /// The same turn for the plain route.
    RelayChatRequest plain() const { return {messages, maxTokens, companion, incognito, mode}; }
};
BOOST_DESCRIBE_STRUCT(RelayChatStreamRequest, (), (messages, maxTokens, companion, incognito, mode, surface))

} // namespace lmp
