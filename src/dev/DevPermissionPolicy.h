#pragma once

#include "dev/DevMode.h"

#include <QSet>
#include <QStringList>

#include <boost/json/object.hpp>

#include <optional>

namespace lmp {

/// Judges what a tool of an agent is about to do.
///
/// A value; each engine owns one, on its executor. `evaluate` may look at the disk and take some milliseconds for a
/// text made to be slow: never on the UI thread. What cannot be judged is asked, so nothing fails.
class DevPermissionPolicy {
public:
    /// What of a call matters.
    struct Call {
        QString tool = {};                   ///< as the engine names it
        std::optional<QString> command = {}; ///< of a shell
        QStringList paths = {};              ///< of the files it works on
        /// Where the command runs, when the engine says so: the agent may have chosen any place.
        std::optional<QString> directory = {};

        /// Out of a tool's input: `command`, and `path`, `file_path` and `notebook_path`.
        static Call of(QString tool, const boost::json::object &input);
    };
    struct Verdict {
        enum class Outcome { allow, ask, deny };
        Outcome outcome = Outcome::ask;
        QString reason = {}; ///< of a denial; told to the agent and shown
        bool operator==(const Verdict &) const = default;
    };

    /// What the user allowed for the rest of the session.
    QSet<QString> sessionAllow = {};

    /// @param directory where the tool works, an absolute path
    Verdict evaluate(const Call &call, DevMode mode, const QString &directory) const;

    /// What allowing the call for the session allows.
    static QStringList ruleKeys(const Call &call);
    void allowForSession(const Call &call);
};

} // namespace lmp
