#pragma once

#include <QString>

#include <boost/describe.hpp>

namespace lmp {

/// The service's remark that somebody has been talking for a long time.
struct ContinuousUseNotice {
    qint64 minutes = 0;
    QString message;
    bool operator==(const ContinuousUseNotice &) const = default;
};
BOOST_DESCRIBE_STRUCT(ContinuousUseNotice, (), (minutes, message))

} // namespace lmp
