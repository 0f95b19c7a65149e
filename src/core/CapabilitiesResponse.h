#pragma once

#include "core/FeatureCapability.h"

#include <QList>

namespace lmp {

/// The service's table of features for one platform.
struct CapabilitiesResponse {
    QString platform;
    qint64 version = 0;
    QList<FeatureCapability> features;
};
BOOST_DESCRIBE_STRUCT(CapabilitiesResponse, (), (platform, version, features))

} // namespace lmp
