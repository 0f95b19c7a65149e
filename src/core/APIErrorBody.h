#pragma once

#include <QString>

#include <boost/describe.hpp>

#include <optional>

namespace lmp {

/// What a non-2xx answer may say about itself.
struct APIErrorBody {
    std::optional<QString> error;
    std::optional<QString> reason;
    std::optional<qint64> balance;
    std::optional<qint64> needed;
};
BOOST_DESCRIBE_STRUCT(APIErrorBody, (), (error, reason, balance, needed))

} // namespace lmp
