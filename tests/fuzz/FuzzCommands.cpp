#include "FuzzTarget.h"

#include "dev/DevPatterns.h"
#include "dev/DevPermissionPolicy.h"

#include <cstdlib>

namespace lmp {

/// A command that the patterns find as it stands is never let through, and every command gets a verdict.
void fuzzCommands(QByteArrayView input) {
    const DevPermissionPolicy::Call call{.tool = QStringLiteral("bash"), .command = QString::fromUtf8(input)};
    const auto outcome = DevPermissionPolicy().evaluate(call, DevMode::full, QStringLiteral("/nowhere/repo")).outcome;
    const auto text = call.command->toStdString();
    if (outcome == DevPermissionPolicy::Verdict::Outcome::allow &&
        (DevPatterns::isSensitive(text) || DevPatterns::isRisky(text)))
        std::abort();
}

} // namespace lmp
