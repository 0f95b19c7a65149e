#pragma once

#include <QString>

#include <boost/describe.hpp>

#include <optional>

namespace lmp {

/// A conversation as a list shows it.
struct ConversationSummaryDTO {
    QString id;
    QString title;
    std::optional<QString> mode;
    bool operator==(const ConversationSummaryDTO &) const = default;
};
BOOST_DESCRIBE_STRUCT(ConversationSummaryDTO, (), (id, title, mode))

} // namespace lmp
