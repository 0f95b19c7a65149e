import QtQuick
import Lumenpair.Kit
import Lumenpair.Markdown

/// Code with its language and a button that copies all of it. Long code shows its beginning until asked for more; a
/// language gives it colours once it is whole.
Rectangle {
    id: root

    required property MarkdownBlockItem block

    border.color: Theme.border
    border.width: 1
    color: Theme.sunken
    height: implicitHeight
    implicitHeight: bottom.y + bottom.height
    radius: Theme.radiusRow
    width: root.block.width - x
    x: Theme.dp(root.block.indent)
    y: Theme.dp(root.block.space)

    Component.onCompleted: root.block.edit = edit

    CodeDocument {
        code: root.block.code
        colours: [Theme.accent, Theme.success, Theme.text3, Theme.warning, Theme.care, Theme.added, Theme.removed]
        document: edit.textDocument
        language: root.block.language
        lineHeight: Theme.dp(20)
        whole: root.block.closed
    }

    Item {
        id: header

        height: Theme.dp(36)
        width: parent.width

        LMPText {
            anchors.left: parent.left
            anchors.leftMargin: Theme.dp(12)
            anchors.right: copy.left
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.text2
            elide: Text.ElideRight
            kind: LMPText.Caption
            text: root.block.language !== "" ? root.block.language : "代码"
            wrapMode: Text.NoWrap
        }

        LMPButton {
            id: copy

            Accessible.description: "拷贝这段代码的全部内容"
            anchors.right: parent.right
            anchors.rightMargin: Theme.dp(2)
            anchors.verticalCenter: parent.verticalCenter
            iconName: copied.running ? "check" : "copy"
            kind: LMPButton.Quiet
            text: copied.running ? "已复制" : "复制"

            onClicked: {
                root.block.view.copyRequested(root.block.view.blocks.source(root.block.index));
                copied.restart();
            }

            Timer {
                id: copied

                interval: 2000
            }
        }
    }

    MarkdownSideways {
        id: sideways

        edit: edit
        height: implicitHeight
        width: parent.width - 2 * x
        x: Theme.dp(12)
        y: header.height

        MarkdownEdit {
            id: edit

            Accessible.name: root.block.language !== "" ? root.block.language + " 代码" : "代码"
            Accessible.role: Accessible.EditableText
            font.family: Theme.monoFamily
            font.pixelSize: Theme.sp(13)
            frame: root
            row: root.block.index
            textFormat: TextEdit.PlainText
            view: root.block.view
            width: Math.max(implicitWidth, sideways.width)
            wrapMode: TextEdit.NoWrap
        }
    }

    Item {
        id: bottom

        height: more.visible ? Theme.dp(40) : Theme.dp(12)
        width: parent.width
        y: sideways.y + sideways.height

        MarkdownMore {
            id: more

            anchors.centerIn: parent
            block: root.block
        }
    }
}
