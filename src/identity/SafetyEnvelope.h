#pragma once

#include "identity/CrisisResource.h"

#include <QList>

#include <optional>

namespace lmp {

/// The safety block of an answer as the service writes it, before anything is made of it.
struct SafetyEnvelope {
    std::optional<bool> crisis;
    std::optional<QString> guidance;
    std::optional<QList<CrisisResource>> resources;
    std::optional<QString> region;
    std::optional<QString> layer;
    std::optional<bool> assumedRegion;
    std::optional<bool> resourcesVerified;
    bool operator==(const SafetyEnvelope &) const = default;
};
BOOST_DESCRIBE_STRUCT(SafetyEnvelope, (),
                      (crisis, guidance, resources, region, layer, assumedRegion, resourcesVerified))

} // namespace lmp
