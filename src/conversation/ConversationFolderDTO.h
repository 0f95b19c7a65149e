#pragma once

#include "core/JsonRest.h"

#include <QString>

#include <boost/describe.hpp>

#include <optional>

namespace lmp {

/// A folder of works.
struct ConversationFolderDTO {
    QString id;
    QString name;
    std::optional<QString> parentId;
    JsonRest rest;
    bool operator==(const ConversationFolderDTO &) const = default;
};
BOOST_DESCRIBE_STRUCT(ConversationFolderDTO, (), (id, name, parentId, rest))

} // namespace lmp
