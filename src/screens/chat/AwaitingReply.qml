import QtQuick
import Lumenpair.Kit

/// Stands where the reply will: dots that move a few times a second, or not at all where less motion is wanted. The
/// words are under the message that waits.
Item {
    id: root

    property bool busy: false

    height: root.busy ? Theme.dp(49) : 0
    visible: root.busy

    LMPSpinner {
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.dp(10)
        visible: root.busy
    }
}
