import QtQuick
import Lumenpair.Kit

/// What is set, at the left, and how, at the right or below it where there is no room.
Flow {
    id: root

    default property alias control: control.data
    property string text
    readonly property bool roomy: label.implicitWidth + control.childrenRect.width + Theme.dp(16) <= root.width

    spacing: Theme.dp(8)

    LMPText {
        id: label

        Accessible.ignored: true
        height: Theme.dp(32)
        text: root.text
        verticalAlignment: Text.AlignVCenter
        width: root.roomy ? root.width - control.width - root.spacing : root.width
    }

    Item {
        id: control

        height: childrenRect.height
        width: childrenRect.width
    }
}
