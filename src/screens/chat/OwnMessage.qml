import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// What the user said: a soft bubble at the right, and under it what became of it.
MessageFrame {
    id: root

    /// How much of a long text is laid out; the rest comes on demand, since a megabyte takes longer than a frame.
    property int shownLength: 6000
    readonly property int hiddenLength: Math.max(0, root.row.text.length - root.shownLength)
    readonly property real widest: Math.floor(root.width * 0.75)

    function shownText(): string {
        if (root.hiddenLength === 0)
            return root.row.text;
        // Never through the middle of a character of two units.
        const code = root.row.text.charCodeAt(root.shownLength);
        const cut = code >= 0xdc00 && code <= 0xdfff ? root.shownLength - 1 : root.shownLength;
        return root.row.text.slice(0, cut) + "…";
    }

    gap: root.row.grouped ? 8 : 16

    Item {
        height: bubble.height
        width: root.width

        LMPIconButton {
            anchors.right: bubble.left
            anchors.rightMargin: Theme.space4
            anchors.verticalCenter: bubble.verticalCenter
            iconName: "copy"
            implicitHeight: Theme.target
            opacity: root.attended ? 1 : 0
            text: "复制这条消息"

            onClicked: root.row.chat.copyMessage(root.row.messageId)
        }
        Rectangle {
            id: bubble

            anchors.right: parent.right
            color: Theme.ownBubble
            height: words.height + 2 * Theme.space8
            radius: Theme.radiusCard
            width: words.width + 2 * Theme.space12

            MessageText {
                id: words

                text: root.shownText()
                width: Math.min(root.widest - 2 * Theme.space12, Math.ceil(words.implicitWidth))
                x: Theme.space12
                y: Theme.space8
            }
        }
    }
    LMPButton {
        anchors.right: parent.right
        kind: LMPButton.Link
        text: "再显示一些（还有 " + root.hiddenLength + " 字）"
        visible: root.hiddenLength > 0

        onClicked: root.shownLength += 20000
    }
    LMPText {
        Accessible.ignored: true
        anchors.right: parent.right
        color: root.row.state === MessageListModel.Unknown || root.row.state === MessageListModel.Failed ? Theme.warning : Theme.text3
        horizontalAlignment: Text.AlignRight
        kind: LMPText.Caption
        text: root.row.stateLine()
        visible: text !== ""
        width: root.widest
    }
    MessageError {
        anchors.right: parent.right
        text: root.row.errorText
        widest: root.widest
    }
    OwnMessageRetry {
        anchors.right: parent.right
        row: root.row
    }
}
