import QtQuick
import Lumenpair.Kit

/// Code with its language and a button that copies all of it. Long code shows its beginning until asked for more.
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

            anchors.right: parent.right
            anchors.rightMargin: Theme.dp(2)
            anchors.verticalCenter: parent.verticalCenter
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

    Flickable {
        id: sideways

        boundsBehavior: Flickable.StopAtBounds
        clip: true
        contentHeight: height
        contentWidth: edit.implicitWidth
        flickableDirection: Flickable.HorizontalFlick
        height: edit.implicitHeight
        width: parent.width - 2 * x
        x: Theme.dp(12)
        y: header.height

        TextEdit {
            id: edit

            Accessible.name: "代码"
            Accessible.readOnly: true
            activeFocusOnTab: false
            color: Theme.text
            font.family: Theme.monoFamily
            font.pixelSize: Theme.sp(13)
            readOnly: true
            selectByKeyboard: true
            selectByMouse: true
            selectedTextColor: Theme.onAccent
            selectionColor: Theme.accent
            text: root.block.code
            textFormat: TextEdit.PlainText
            width: Math.max(implicitWidth, sideways.width)
            wrapMode: TextEdit.NoWrap
        }
    }

    Item {
        id: bottom

        height: root.block.hidden > 0 ? Theme.dp(40) : Theme.dp(12)
        width: parent.width
        y: sideways.y + sideways.height

        LMPButton {
            anchors.centerIn: parent
            kind: LMPButton.Link
            text: "展开（还有 " + root.block.hidden + " 行）"
            visible: root.block.hidden > 0

            onClicked: root.block.view.blocks.expand(root.block.index)
        }
    }
}
