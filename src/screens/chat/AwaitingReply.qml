import QtQuick
import Lumenpair.Kit

/// Says that a reply is awaited. Moves twice a second and a few pixels only, or not at all where less motion is wanted.
Item {
    id: root

    property bool busy: false
    property int step: 2

    height: root.busy ? Theme.dp(45) : 0
    visible: root.busy

    LMPText {
        id: words

        anchors.bottom: parent.bottom
        color: Theme.text3
        text: "正在等待回答"
    }
    LMPText {
        Accessible.ignored: true
        anchors.bottom: parent.bottom
        anchors.left: words.right
        color: Theme.text3
        text: "·".repeat(root.step + 1)
    }
    Timer {
        interval: 500
        repeat: true
        running: root.busy && !Theme.reducedMotion && root.Window.active

        onTriggered: root.step = (root.step + 1) % 3
    }
}
