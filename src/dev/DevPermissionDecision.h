#pragma once

#include <QString>

#include <optional>

namespace lmp {

/// The user's answer to a DevPermissionRequest.
struct DevPermissionDecision {
    enum class Kind { deny, allowOnce, allowSession };

    Kind kind = Kind::deny;
    std::optional<QString> reason = {}; ///< of a denial: what the agent is told; none for the usual words
    bool operator==(const DevPermissionDecision &) const = default;

    static DevPermissionDecision deny(std::optional<QString> reason = {}) { return {Kind::deny, std::move(reason)}; }
    static DevPermissionDecision allowOnce() { return {.kind = Kind::allowOnce}; }
    static DevPermissionDecision allowSession() { return {.kind = Kind::allowSession}; }
};

} // namespace lmp
