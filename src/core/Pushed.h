#pragma once

namespace lmp::detail {

/// What became of an item that was pushed into a Channel.
enum class Pushed { Taken, Full, Over };

} // namespace lmp::detail
