#pragma once

#include "conversation/ConversationWorkVersionDTO.h"

#include <QList>
#include <QString>

#include <boost/describe.hpp>

#include <optional>

namespace lmp {

/// A work that was made in a conversation.
struct ConversationWorkDTO {
    QString id;
    QString kind;
    QString title;
    QString status;
    std::optional<QString> sessionId;
    std::optional<bool> referenceOnly;
    std::optional<QString> taskId;
    std::optional<QString> reservationId;
    std::optional<QString> artifactId;
    std::optional<QString> folderId;
    std::optional<QString> currentVersionId;
    QList<ConversationWorkVersionDTO> versions;
    std::optional<QString> failure;
    std::optional<qint64> costDeci; ///< tenths of a Pip
    JsonRest rest;
    bool operator==(const ConversationWorkDTO &) const = default;
};
BOOST_DESCRIBE_STRUCT(ConversationWorkDTO, (),
                      (id, kind, title, status, sessionId, referenceOnly, taskId, reservationId, artifactId, folderId,
                       currentVersionId, versions, failure, costDeci, rest))

} // namespace lmp
