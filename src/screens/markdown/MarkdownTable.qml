import QtQuick
import Lumenpair.Kit

/// A table that scrolls sideways when it is wider than the message.
Item {
    id: root

    required property MarkdownBlockItem block

    height: implicitHeight
    implicitHeight: sideways.height + (root.block.hidden > 0 ? Theme.dp(32) : 0)
    width: root.block.width - x
    x: Theme.dp(root.block.indent)
    y: Theme.dp(root.block.space)

    Flickable {
        id: sideways

        boundsBehavior: Flickable.StopAtBounds
        clip: true
        contentHeight: height
        contentWidth: edit.width
        flickableDirection: Flickable.HorizontalFlick
        height: edit.implicitHeight
        width: parent.width

        TextEdit {
            id: edit

            Accessible.name: "表格"
            Accessible.readOnly: true
            color: Theme.text
            font.family: Theme.fontFamily
            font.pixelSize: Theme.sp(14)
            readOnly: true
            selectByKeyboard: true
            selectByMouse: true
            selectedTextColor: Theme.onAccent
            selectionColor: Theme.accent
            text: root.block.view.style + root.block.text
            textFormat: TextEdit.RichText
            wrapMode: TextEdit.NoWrap

            onLinkActivated: link => root.block.view.linkActivated(link)
        }
    }

    LMPButton {
        anchors.bottom: parent.bottom
        kind: LMPButton.Link
        text: "展开（还有 " + root.block.hidden + " 行）"
        visible: root.block.hidden > 0

        onClicked: root.block.view.blocks.expand(root.block.index)
    }
}
