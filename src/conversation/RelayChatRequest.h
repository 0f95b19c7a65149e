#pragma once

#include "conversation/RelayTurn.h"

#include <QList>

#include <optional>

namespace lmp {

/// What the plain route is asked.
struct RelayChatRequest {
    using Turn = RelayTurn;

    QList<Turn> messages; ///< oldest first
    qint64 maxTokens = 0;
    std::optional<QString> companion;
    bool incognito = false; ///< nothing is kept: no history, no memories
    std::optional<QString> mode;
};
BOOST_DESCRIBE_STRUCT(RelayChatRequest, (), (messages, maxTokens, companion, incognito, mode))

} // namespace lmp
