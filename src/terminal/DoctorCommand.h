#pragma once

#include "terminal/Console.h"
#include "terminal/ExitCode.h"

#include <QCoroTask>

namespace lmp {

/// `lumenpair doctor`: whether the coding agents and git can be used. UI thread; the console outlives it.
class DoctorCommand {
public:
    /// @param json for programs
    static QCoro::Task<ExitCode> run(Console *console, bool json);
};

} // namespace lmp
