#pragma once

#include "core/CapabilityLevel.h"

#include <QString>

#include <optional>

namespace lmp {

/// What the service says of one feature on this platform.
struct FeatureCapability {
    QString id; ///< unique within one table
    QString label;
    std::optional<QString> nav = {}; ///< the place in the navigation that the feature belongs to
    CapabilityLevel level = CapabilityLevel::none;
    std::optional<QString> note = {};
    bool operator==(const FeatureCapability &) const = default;
};
BOOST_DESCRIBE_STRUCT(FeatureCapability, (), (id, label, nav, level, note))

} // namespace lmp
