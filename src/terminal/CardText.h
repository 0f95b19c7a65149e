#pragma once

#include "conversation/UsedMemory.h"
#include "identity/ContinuousUseNotice.h"
#include "identity/CrisisSignal.h"

#include <QList>
#include <QString>

#include <optional>

namespace lmp {

/// The cards and notes of a chat as lines of text. Free of state.
class CardText {
public:
    static QString crisis(const CrisisSignal &signal);
    static QString continuousUse(const ContinuousUseNotice &notice);
    static QString used(const QList<UsedMemory> &used);
    /// What the turn cost and what is left; "—" for what is not known.
    static QString charge(std::optional<qint64> charged, std::optional<qint64> balance);
};

} // namespace lmp
