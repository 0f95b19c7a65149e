#pragma once

#include "identity/CrisisResource.h"

#include <QList>

#include <optional>

namespace lmp {

/// The service's judgement that a conversation shows a crisis, ready to be shown.
struct CrisisSignal {
    QString guidance;
    QList<CrisisResource> resources;
    std::optional<QString> region;
    std::optional<QString> layer; ///< the service's own level
    bool assumedRegion = false;   ///< the region was guessed
    bool resourcesVerified = false;
    bool operator==(const CrisisSignal &) const = default;

    /// Whether there are numbers fit to be given. Both must hold: an unverified number may ring anywhere.
    bool hasVerifiedNumbers() const { return resourcesVerified && !resources.isEmpty(); }
};
BOOST_DESCRIBE_STRUCT(CrisisSignal, (), (guidance, resources, region, layer, assumedRegion, resourcesVerified))

} // namespace lmp
