#pragma once

#include <QString>

#include <boost/describe.hpp>

#include <optional>

namespace lmp {

/// Whether an engine can be used, as far as asking found out.
struct DevReadiness {
    enum class State {
        unknown,   ///< asking did not decide it; never shown as signed out
        probing,   ///< being asked
        missing,   ///< not installed
        loggedOut, ///< installed, and says that nobody is signed in
        ready,
    };

    State state = State::unknown;
    QString unknownReason = {};          ///< of unknown: why
    std::optional<QString> path = {};    ///< the program
    std::optional<QString> version = {}; ///< what it printed for its version
    std::optional<QString> detail = {};  ///< a line for the user
    bool operator==(const DevReadiness &) const = default;

    static DevReadiness unknown(QString why) { return {.state = State::unknown, .unknownReason = std::move(why)}; }
    /// The line to show: the detail, or why it is not known.
    std::optional<QString> line() const {
        return state == State::unknown && !unknownReason.isEmpty() ? std::optional(unknownReason) : detail;
    }
};
BOOST_DESCRIBE_ENUM(DevReadiness::State, unknown, probing, missing, loggedOut, ready)

} // namespace lmp
