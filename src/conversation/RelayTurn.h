#pragma once

#include <QString>

#include <boost/describe.hpp>

namespace lmp {

/// One turn as the model sees it.
struct RelayTurn {
    QString role; ///< "user" or "assistant"
    QString content;
    bool operator==(const RelayTurn &) const = default;
};
BOOST_DESCRIBE_STRUCT(RelayTurn, (), (role, content))

} // namespace lmp
