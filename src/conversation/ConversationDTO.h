#pragma once

#include "conversation/ConvMessageDTO.h"
#include "conversation/ConversationWorkspaceDTO.h"

#include <QList>
#include <QString>

#include <boost/describe.hpp>

#include <optional>

namespace lmp {

/// One whole conversation, as the service stores it.
///
/// A value; copies share until one of them is changed.
struct ConversationDTO {
    QString id;
    QString title;
    std::optional<QString> mode;    ///< passed on to the relay
    QList<ConvMessageDTO> messages; ///< oldest first
    std::optional<ConversationWorkspaceDTO> workspace;
    std::optional<qint64> revision; ///< the service's, as last known here
    JsonRest rest;
    bool operator==(const ConversationDTO &) const = default;
};
BOOST_DESCRIBE_STRUCT(ConversationDTO, (), (id, title, mode, messages, workspace, revision, rest))

} // namespace lmp
