import QtQuick
import Lumenpair.Shell

/// What every page of a tab is given.
FocusScope {
    id: root

    required property WindowScene scene
    required property TabPages frame
    required property int tab
}
