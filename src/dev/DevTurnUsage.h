#pragma once

#include <QString>

#include <boost/describe.hpp>

#include <optional>

namespace lmp {

/// What a turn cost, as far as the engine says. What it does not say is none, never 0.
struct DevTurnUsage {
    std::optional<qint64> inputTokens = {};
    std::optional<qint64> outputTokens = {};
    std::optional<double> costUsd = {};     ///< as the tool reports it; Claude Code's is of the whole session
    std::optional<qint64> pipCharged = {};  ///< what the service charged for the turn
    std::optional<qint64> balanceDeci = {}; ///< what is left, in tenths
    std::optional<qint64> durationMs = {};
    std::optional<QString> model = {};
    bool operator==(const DevTurnUsage &) const = default;
};
BOOST_DESCRIBE_STRUCT(DevTurnUsage, (),
                      (inputTokens, outputTokens, costUsd, pipCharged, balanceDeci, durationMs, model))

} // namespace lmp
