import QtQuick
import Lumenpair.Kit

/// A table that scrolls sideways when it is wider than the message.
Item {
    id: root

    required property MarkdownBlockItem block

    height: implicitHeight
    implicitHeight: sideways.height + (more.visible ? more.height : 0)
    width: root.block.width - x
    x: Theme.dp(root.block.indent)
    y: Theme.dp(root.block.space)

    Component.onCompleted: root.block.edit = edit

    MarkdownSideways {
        id: sideways

        edit: edit
        height: implicitHeight
        width: parent.width

        MarkdownEdit {
            id: edit

            Accessible.name: "表格"
            Accessible.role: Accessible.EditableText
            font.pixelSize: Theme.sp(14)
            frame: root
            row: root.block.index
            text: root.block.view.style + root.block.text
            textFormat: TextEdit.RichText
            view: root.block.view
            // Long cells break before the table becomes wider than people read.
            width: Math.min(implicitWidth, Math.max(sideways.width, root.block.columns * Theme.dp(240)))
            wrapMode: TextEdit.Wrap
        }
    }

    MarkdownMore {
        id: more

        anchors.bottom: parent.bottom
        block: root.block
    }
}
