#pragma once

#include "core/APIError.h"

#include <expected>

namespace lmp {

/// What a call to the service comes back with: the decoded answer or the one error record.
template <class T>
using Result = std::expected<T, APIError>;

} // namespace lmp
