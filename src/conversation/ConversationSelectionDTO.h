#pragma once

#include "core/JsonRest.h"

#include <QString>

#include <boost/describe.hpp>

#include <optional>

namespace lmp {

/// The work, and the place in it, that a message or the workspace points at.
struct ConversationSelectionDTO {
    QString workId;
    std::optional<QString> versionId;
    QString label;
    std::optional<QString> locator;
    JsonRest rest;
    bool operator==(const ConversationSelectionDTO &) const = default;
};
BOOST_DESCRIBE_STRUCT(ConversationSelectionDTO, (), (workId, versionId, label, locator, rest))

} // namespace lmp
