#pragma once

#include <QString>
#include <boost/describe.hpp>

namespace lmp {

/// A number of the crisis card or the crisis page, as it is shown.
struct CrisisNumber {
    QString label;
    QString phone;  ///< to be read
    QString note;   ///< may be empty
    QString number; ///< to be dialled: the phone as it came
    bool operator==(const CrisisNumber &) const = default;
};
BOOST_DESCRIBE_STRUCT(CrisisNumber, (), (label, phone, note, number))

} // namespace lmp
