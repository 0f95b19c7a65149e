#pragma once

#include "dev/DevEngine.h"

#include <QStringList>

namespace lmp {

/// A session with a scripted agent: what it says, what is done about it, and what was seen of it.
struct AgentScene {
    enum class Act { respond, send, interrupt };

    /// What to do once an event has come.
    struct Reaction {
        QString at = {}; ///< how the event's text begins
        Act act = Act::respond;
        DevPermissionDecision decision = {};
        QString id = {}; ///< of the question; empty is the event's own
    };
    struct Seen {
        std::string events = {};   ///< a line each; of a start that failed, why
        QStringList received = {}; ///< by the agent
        QList<bool> waited = {};   ///< whether what was answered waited for it
        QStringList withdrawn = {};
    };
    using Make = DevEngine::Handle (*)(const QString &program);

    QByteArray recording = {};
    DevMode mode = DevMode::acceptEdits;
    std::optional<QString> resume = {};
    std::optional<QString> model = {};
    QList<Reaction> reactions = {}; ///< in the order in which they are due
    int turns = 1;                  ///< after which the session is stopped
    QStringList turnEnds = {};      ///< how the events begin that end a turn

    /// Plays it; the agent has ended then.
    Seen play(Make make) const;
    /// Plays it twice, so that nothing of the first time is left for the second.
    /// @param skipped lines at the beginning
    Seen twice(Make make, const std::string &expected, int skipped = 0) const;
};

} // namespace lmp
