#pragma once

#include <boost/describe.hpp>

#include <optional>

namespace lmp {

/// An answer that says no more than that it was done. A value.
struct OkResp {
    std::optional<bool> ok;
};
BOOST_DESCRIBE_STRUCT(OkResp, (), (ok))

} // namespace lmp
