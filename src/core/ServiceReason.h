#pragma once

#include "core/APIError.h"

namespace lmp {

/// The sentence the service itself gave for `error`, or `otherwise` when it gave none: screens with a fixed sentence of
/// their own say that rather than one made up here about the network or the status.
QString serviceReason(const APIError &error, const QString &otherwise);

} // namespace lmp
