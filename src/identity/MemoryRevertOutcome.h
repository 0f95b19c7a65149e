#pragma once

#include <QString>

#include <variant>

namespace lmp {

/// What became of going back to the wording before.
struct MemoryRevertOutcome {
    struct done {
        QString content; ///< the wording now
        QString revision;
        bool operator==(const done &) const = default;
    };
    struct unchanged {
        QString message;
        bool operator==(const unchanged &) const = default;
    };
    struct failed {
        QString message;
        bool operator==(const failed &) const = default;
    };
    struct conflict {
        bool operator==(const conflict &) const = default;
    };
    std::variant<done, unchanged, failed, conflict> value = conflict{};
    bool operator==(const MemoryRevertOutcome &) const = default;
};

} // namespace lmp
