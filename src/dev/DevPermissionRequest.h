#pragma once

#include <QList>
#include <QString>

#include <boost/describe.hpp>

namespace lmp {

/// A question of the agent that waits for the user.
struct DevPermissionRequest {
    QString id = {};      ///< what the answer is given to
    QString tool = {};    ///< as the engine names it
    QString summary = {}; ///< one line for the user
    QString input = {};   ///< all that the tool was given, as text; JSON for structured input
    QList<QString> suggestions = {};
    bool operator==(const DevPermissionRequest &) const = default;
};
BOOST_DESCRIBE_STRUCT(DevPermissionRequest, (), (id, tool, summary, input, suggestions))

} // namespace lmp
