#pragma once

#include <QString>

#include <boost/describe.hpp>

namespace lmp {

/// A number that a person in distress can call.
struct CrisisResource {
    QString label;
    QString phone; ///< as it came: what is to be read of it may be another number
    bool operator==(const CrisisResource &) const = default;
};
BOOST_DESCRIBE_STRUCT(CrisisResource, (), (label, phone))

} // namespace lmp
