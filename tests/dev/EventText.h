#pragma once

#include "dev/DevEvent.h"

namespace lmp {

/// An event in few words, so that a test says what happened as a list of lines.
QString eventText(const DevEvent &event);

} // namespace lmp
