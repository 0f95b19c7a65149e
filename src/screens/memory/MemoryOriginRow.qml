import QtQuick
import Lumenpair.Kit

/// One link of the chain that a memory comes from.
Item {
    id: root

    required property string at
    required property string text

    implicitHeight: words.height
    width: parent ? parent.width : 0

    Rectangle {
        color: Theme.borderStrong
        height: Theme.dp(8)
        radius: height / 2
        width: height
        x: Theme.space2
        y: Math.round((Theme.dp(22) - height) / 2)
    }

    Column {
        id: words

        width: parent.width - x
        x: Theme.dp(20)

        LMPText {
            text: root.text
            width: parent.width
        }

        LMPText {
            color: Theme.text2
            kind: LMPText.Caption
            text: root.at
            visible: text !== ""
            width: parent.width
        }
    }
}
