import QtQuick
import Lumenpair.Kit
import Lumenpair.Markdown

/// A paragraph, heading or the text of a list item.
MarkdownEdit {
    id: root

    required property MarkdownBlockItem block
    /// 1 to 6 for a heading, else 0.
    readonly property int level: root.block.kind === MarkdownBlockModel.Heading ? root.block.level : 0

    Accessible.name: root.getText(0, root.length)
    Accessible.role: root.level > 0 ? Accessible.Heading : Accessible.StaticText
    font.pixelSize: Theme.sp([15, 22, 17, 15, 14, 14, 14][root.level])
    font.weight: root.level > 0 ? Font.DemiBold : Font.Normal
    row: root.block.index
    text: root.view.style + "<p style=\"line-height:" + Theme.dp([25, 32, 26, 24, 22, 22, 22][root.level]) + "px;-qt-line-height-type:fixed\">" + root.block.text + "</p>"
    textFormat: TextEdit.RichText
    view: root.block.view
    width: root.block.width - x
    wrapMode: TextEdit.Wrap
    x: Theme.dp(root.block.indent)
    y: Theme.dp(root.block.space)

    Component.onCompleted: root.block.edit = root
}
