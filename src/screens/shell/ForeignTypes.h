#pragma once

#include "app/MacQuitCoordinator.h"
#include "app/RootView.h"
#include "app/UpdateChecker.h"
#include "core/CapabilityStore.h"

#include <QtQml/qqml.h>

namespace lmp {

/// Stores that know nothing of QML, made known to it.
struct RootViewForeign {
    Q_GADGET
    QML_FOREIGN(lmp::RootView)
    QML_NAMED_ELEMENT(RootView)
    QML_UNCREATABLE("made by the program")
};

struct MacQuitCoordinatorForeign {
    Q_GADGET
    QML_FOREIGN(lmp::MacQuitCoordinator)
    QML_NAMED_ELEMENT(MacQuitCoordinator)
    QML_UNCREATABLE("made by the program")
};

struct UpdateCheckerForeign {
    Q_GADGET
    QML_FOREIGN(lmp::UpdateChecker)
    QML_NAMED_ELEMENT(UpdateChecker)
    QML_UNCREATABLE("made by the program")
};

struct CapabilityStoreForeign {
    Q_GADGET
    QML_FOREIGN(lmp::CapabilityStore)
    QML_NAMED_ELEMENT(CapabilityStore)
    QML_UNCREATABLE("made by the program")
};

} // namespace lmp
