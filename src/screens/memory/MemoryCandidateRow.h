#pragma once

#include "identity/MemoryCandidateDTO.h"

namespace lmp {

/// A candidate as a list shows it.
struct MemoryCandidateRow {
    QString candidateId;
    QString content;
    QString why;
    QString scope;
    bool busy = false;   ///< a request about it is under way
    bool picked = false; ///< where several are chosen: this one is
    bool operator==(const MemoryCandidateRow &) const = default;

    static MemoryCandidateRow of(const MemoryCandidateDTO &candidate) {
        return {
            .candidateId = candidate.id, .content = candidate.content, .why = candidate.why, .scope = candidate.scope};
    }
};
BOOST_DESCRIBE_STRUCT(MemoryCandidateRow, (), (candidateId, content, why, scope, busy, picked))

} // namespace lmp
