#pragma once

#include "core/JsonRest.h"

#include <QString>

#include <boost/describe.hpp>

#include <optional>

namespace lmp {

/// A structured part of a message, or an attachment of an input.
struct ConversationPartDTO {
    QString id;
    QString kind;
    QString name;
    std::optional<QString> text;
    std::optional<QString> assetId;
    std::optional<QString> mimeType;
    JsonRest rest;
    bool operator==(const ConversationPartDTO &) const = default;
};
BOOST_DESCRIBE_STRUCT(ConversationPartDTO, (), (id, kind, name, text, assetId, mimeType, rest))

} // namespace lmp
