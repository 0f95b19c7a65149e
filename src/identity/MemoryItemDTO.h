#pragma once

#include "core/JsonRest.h"
#include "identity/MemoryTruth.h"

#include <QList>
#include <QString>

#include <optional>

namespace lmp {

/// One memory of the ledger.
struct MemoryItemDTO {
    QString id;
    QString content; ///< the wording
    QString kind;
    MemoryTruth truth = MemoryTruth::inf;
    QString source;
    QString confidence;
    QString scope;
    std::optional<QString> validFrom;
    std::optional<QString> validUntil;
    std::optional<QString> supersedes; ///< id of the earlier memory that this one replaced
    std::optional<QString> touchedAt;  ///< when the twin last used it
    std::optional<bool> frozen;
    std::optional<QList<QString>> sourceRefs; ///< where it came from
    JsonRest rest;                            ///< an undo posts the item back, whatever else it carried
    bool operator==(const MemoryItemDTO &) const = default;
};
BOOST_DESCRIBE_STRUCT(MemoryItemDTO, (),
                      (id, content, kind, truth, source, confidence, scope, validFrom, validUntil, supersedes,
                       touchedAt, frozen, sourceRefs, rest))

} // namespace lmp
