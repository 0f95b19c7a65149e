import QtQuick
import Lumenpair.Kit
import Lumenpair.Markdown

/// An image of a message: its words and its address. Nothing is loaded before somebody asks for it.
Rectangle {
    id: root

    required property MarkdownBlockItem block
    readonly property bool shown: picture.status === RemoteImage.Ready

    border.color: Theme.border
    border.width: root.shown ? 0 : 1
    color: "transparent"
    height: implicitHeight
    implicitHeight: root.shown ? picture.height + Theme.dp(4) + words.implicitHeight : words.implicitHeight + Theme.dp(24)
    radius: Theme.radiusRow
    width: root.block.width - x
    x: Theme.dp(root.block.indent)
    y: Theme.dp(root.block.space)

    RemoteImage {
        id: picture

        Accessible.name: root.block.alt !== "" ? root.block.alt : "没有说明的图片"
        Accessible.role: Accessible.Graphic
        address: root.block.imageUrl
        height: picture.implicitWidth > 0 ? Math.round(picture.width * picture.implicitHeight / picture.implicitWidth) : 0
        visible: root.shown
        width: Math.min(parent.width, picture.implicitWidth, picture.implicitHeight > 0 ? Theme.dp(480) * picture.implicitWidth / picture.implicitHeight : 0)
    }

    Column {
        id: words

        readonly property real margin: root.shown ? 0 : Theme.dp(12)

        spacing: Theme.dp(2)
        width: parent.width - 2 * margin
        x: margin
        y: root.shown ? picture.height + Theme.dp(4) : margin

        LMPText {
            color: root.shown ? Theme.text2 : Theme.text
            kind: root.shown ? LMPText.Caption : LMPText.Body
            text: root.block.alt !== "" ? root.block.alt : "图片"
            visible: !root.shown || root.block.alt !== ""
            width: parent.width
        }

        LMPText {
            color: Theme.text2
            kind: LMPText.Caption
            text: root.block.imageUrl
            visible: !root.shown
            width: parent.width
            wrapMode: Text.WrapAnywhere
        }

        LMPText {
            color: picture.status === RemoteImage.Failed ? Theme.danger : Theme.text2
            kind: LMPText.Caption
            text: picture.status === RemoteImage.Failed ? picture.errorText : "不是 https 的地址，不在这里加载。"
            visible: picture.status === RemoteImage.Failed || !picture.loadable
            width: parent.width
        }

        LMPButton {
            busy: picture.status === RemoteImage.Loading
            iconName: "image"
            kind: LMPButton.Secondary
            text: picture.status === RemoteImage.Failed ? "再试一次" : "点击加载图片"
            visible: picture.loadable && !root.shown

            onClicked: picture.load()
        }
    }
}
