#pragma once

#include "dev/DevPermissionRequest.h"

#include <QString>

namespace lmp {

/// A permission question as a person reads it on a terminal: the exact command, or the change as a diff. Free of state;
/// any thread.
class DevQuestionText {
public:
    /// @param engine the agent's name
    /// @param forChoosing somebody may answer, and is told what the answers mean
    static QString of(const DevPermissionRequest &request, const QString &engine, bool forChoosing = true);

    /// `text` with everything visible that a terminal would act on or swallow, so that what is shown is what is asked
    /// for: control characters as their pictures, those that format or show nothing by their numbers.
    static QString visible(const QString &text);
};

} // namespace lmp
