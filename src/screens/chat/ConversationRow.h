#pragma once

#include <QDateTime>
#include <QString>

namespace lmp {

/// One conversation of the list. A value.
struct ConversationRow {
    QString id;
    QString title;
    QDateTime at;           ///< of the latest change known here; invalid when none is
    bool draft = false;     ///< this machine holds something unsaved or unsent
    bool localOnly = false; ///< the service does not know it
    QString unsent = {};    ///< what was typed for it, of a conversation that nobody has
    bool operator==(const ConversationRow &) const = default;
};

} // namespace lmp
