import QtQuick
import Lumenpair.Shell

/// What every list below the tabs is given.
FocusScope {
    id: root

    required property WindowScene scene

    /// Something has been gone to.
    signal chosen
}
