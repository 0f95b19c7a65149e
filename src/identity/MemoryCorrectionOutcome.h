#pragma once

#include <QString>

#include <variant>

namespace lmp {

/// What became of a correction; `unknown` may have been written, and is never sent again by itself.
struct MemoryCorrectionOutcome {
    struct done {
        QString previous; ///< the wording before
        QString revision; ///< the new token
        bool operator==(const done &) const = default;
    };
    struct conflict {
        bool operator==(const conflict &) const = default;
    };
    struct unknown {
        bool operator==(const unknown &) const = default;
    };
    std::variant<done, conflict, unknown> value = unknown{};
    bool operator==(const MemoryCorrectionOutcome &) const = default;
};

} // namespace lmp
