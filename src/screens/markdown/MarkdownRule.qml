import QtQuick
import Lumenpair.Kit

/// The line between two parts of a message.
Item {
    id: root

    required property MarkdownBlockItem block

    Accessible.role: Accessible.Separator
    height: implicitHeight
    implicitHeight: Theme.dp(9)
    width: root.block.width - x
    x: Theme.dp(root.block.indent)
    y: Theme.dp(root.block.space)

    Rectangle {
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.border
        height: 1
        width: parent.width
    }
}
