import QtQuick
import Lumenpair.Kit

/// What the person said, at the right.
Item {
    id: root

    property string text

    Accessible.name: "你：" + root.text
    Accessible.role: Accessible.StaticText
    implicitHeight: bubble.height

    Rectangle {
        id: bubble

        anchors.right: parent.right
        color: Theme.ownBubble
        height: words.height + 2 * Theme.space8
        radius: Theme.radiusCard
        width: words.width + 2 * Theme.space12

        LMPText {
            id: words

            Accessible.ignored: true
            kind: LMPText.Chat
            text: root.text
            width: Math.min(implicitWidth, Math.round(root.width * 0.75) - 2 * Theme.space12)
            x: Theme.space12
            y: Theme.space8
        }
    }
}
