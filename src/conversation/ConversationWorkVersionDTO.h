#pragma once

#include "core/JsonRest.h"

#include <QString>

#include <boost/describe.hpp>

#include <optional>

namespace lmp {

/// One version of a work.
struct ConversationWorkVersionDTO {
    QString id;
    QString label;
    QString createdAt; ///< as the service writes it
    std::optional<QString> checkpointId;
    std::optional<QString> url;
    JsonRest rest;
    bool operator==(const ConversationWorkVersionDTO &) const = default;
};
BOOST_DESCRIBE_STRUCT(ConversationWorkVersionDTO, (), (id, label, createdAt, checkpointId, url, rest))

} // namespace lmp
