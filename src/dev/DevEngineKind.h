#pragma once

#include <boost/describe.hpp>

namespace lmp {

/// Which coding agent does the work.
enum class DevEngineKind {
    claude, ///< the Claude Code command-line tool
    codex,  ///< the Codex command-line tool
    relay,  ///< a model behind the service; its tools run here
};
BOOST_DESCRIBE_ENUM(DevEngineKind, claude, codex, relay)

} // namespace lmp
