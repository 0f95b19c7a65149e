#pragma once

#include <QString>
#include <boost/describe.hpp>

namespace lmp {

/// A round of the guest trial, as it is shown.
struct GuestTurn {
    QString message;
    QString reply;
    QString stardust; ///< may be empty
    bool operator==(const GuestTurn &) const = default;
};
BOOST_DESCRIBE_STRUCT(GuestTurn, (), (message, reply, stardust))

} // namespace lmp
