#pragma once

#include <QString>

#include <boost/describe.hpp>

namespace lmp {

/// A memory that was proposed and not yet written.
struct MemoryCandidateDTO {
    QString id;
    QString content;
    QString why; ///< the reason it was proposed
    QString scope;
    bool operator==(const MemoryCandidateDTO &) const = default;
};
BOOST_DESCRIBE_STRUCT(MemoryCandidateDTO, (), (id, content, why, scope))

} // namespace lmp
