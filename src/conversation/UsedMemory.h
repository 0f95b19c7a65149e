#pragma once

#include "core/JsonRest.h"

#include <QString>

#include <boost/describe.hpp>

namespace lmp {

/// One memory summary that a reply drew on.
struct UsedMemory {
    QString content;
    QString truth; ///< as the service sends it: "fact", "pref", "inf", "canon" or newer
    JsonRest rest;
    bool operator==(const UsedMemory &) const = default;
};
BOOST_DESCRIBE_STRUCT(UsedMemory, (), (content, truth, rest))

} // namespace lmp
