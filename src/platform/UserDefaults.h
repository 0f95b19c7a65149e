#pragma once

#include "platform/ApplicationSupport.h"
#include "platform/Settings.h"

#include <memory>

namespace lmp {

/// The platform's user defaults for this profile: CFPreferences on macOS, a file of the profile's folder elsewhere.
std::unique_ptr<Settings> makeUserDefaults(const ApplicationSupport &support);

} // namespace lmp
