#pragma once

#include <stdexcept>

namespace lmp {

/// A value that JSON has no text for (an infinite or undefined number). Thrown where the body is encoded, before any
/// request exists.
class JsonEncodingError : public std::invalid_argument {
public:
    using std::invalid_argument::invalid_argument;
};

} // namespace lmp
