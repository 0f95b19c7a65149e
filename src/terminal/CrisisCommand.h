#pragma once

#include "app/Application.h"
#include "terminal/Console.h"
#include "terminal/ExitCode.h"

namespace lmp {

/// `lumenpair crisis [REGION]`: the crisis page. No token, no telemetry, nothing kept. Free of state, UI thread.
class CrisisCommand {
public:
    static QCoro::Task<ExitCode> run(Application *application, Console *console, QString region);
    /// The service could not even be found; the person must not be left with that.
    static void withoutService(Console &console, const QString &reason);
};

} // namespace lmp
