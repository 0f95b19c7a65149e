#pragma once

#include <QString>

namespace lmp {

/// The command that a shell is started for. Codex hands every command to a shell of the user's, so that as it stands
/// each begins with the same two words, and to allow one of them would be to allow all. Free of state; any thread.
namespace codex_command {

/// `command` without the shell around it: "/bin/bash -lc 'npm test'" is "npm test". A text that is anything but one
/// shell with one script stays as it is.
QString withoutShell(const QString &command);

} // namespace codex_command

} // namespace lmp
