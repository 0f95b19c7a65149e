#pragma once

#include "conversation/ConversationFolderDTO.h"
#include "conversation/ConversationSelectionDTO.h"
#include "conversation/ConversationWorkDTO.h"

#include <QList>
#include <QString>

#include <boost/describe.hpp>

#include <optional>

namespace lmp {

/// The works and folders of a conversation.
struct ConversationWorkspaceDTO {
    QList<ConversationWorkDTO> works;
    QList<ConversationFolderDTO> folders;
    std::optional<ConversationSelectionDTO> selection;
    JsonRest rest;
    bool operator==(const ConversationWorkspaceDTO &) const = default;
};
BOOST_DESCRIBE_STRUCT(ConversationWorkspaceDTO, (), (works, folders, selection, rest))

} // namespace lmp
