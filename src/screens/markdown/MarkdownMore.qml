import QtQuick
import Lumenpair.Kit

/// What a block that hides lines or rows offers under them.
LMPButton {
    id: root

    required property MarkdownBlockItem block

    Accessible.description: "还有 " + root.block.hidden + " 行没有显示"
    kind: LMPButton.Link
    text: "展开（还有 " + root.block.hidden + " 行）"
    visible: root.block.hidden > 0

    onClicked: root.block.view.blocks.expand(root.block.index)
}
