import QtQuick
import Lumenpair.Kit

/// An image of a message: its words and its address. Nothing is loaded before somebody asks for it.
Rectangle {
    id: root

    required property MarkdownBlockItem block

    border.color: Theme.border
    border.width: 1
    color: Theme.surface
    height: implicitHeight
    implicitHeight: words.implicitHeight + Theme.dp(24)
    radius: Theme.radiusRow
    width: root.block.width - x
    x: Theme.dp(root.block.indent)
    y: Theme.dp(root.block.space)

    Column {
        id: words

        spacing: Theme.dp(2)
        width: parent.width - 2 * x
        x: Theme.dp(12)
        y: Theme.dp(12)

        LMPText {
            text: root.block.alt !== "" ? "图片：" + root.block.alt : "图片"
            width: parent.width
        }

        LMPText {
            color: Theme.text2
            elide: Text.ElideMiddle
            kind: LMPText.Caption
            maximumLineCount: 2
            text: root.block.imageUrl
            width: parent.width
            wrapMode: Text.WrapAnywhere
        }
    }
}
