#pragma once

#include "app/RootView.h"
#include "app/UpdateChecker.h"
#include "screens/account/SafetyModel.h"
#include "screens/account/SessionModel.h"
#include "screens/memory/MemoryInputs.h"
#include "screens/shell/TelemetryModel.h"

namespace lmp {

class Application;

/// The models that all windows share, made once the application is open.
///
/// Owned by WindowApplication, UI thread; the application outlives it.
struct SharedModels {
    explicit SharedModels(Application &opened);

    Application &application;
    RootView root;
    SessionModel session;
    SafetyModel safety;
    TelemetryModel telemetry;
    UpdateChecker updates;
    MemoryInputs memoryInputs;
    bool wentOn = false; ///< some window has gone on where the program ended
};

} // namespace lmp
