import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// What the user said: a soft bubble at the right, and under it what became of it.
MessageFrame {
    id: root

    readonly property real widest: Math.floor(root.width * 0.75)

    function shownText(): string {
        if (root.row.hiddenLength === 0)
            return root.row.text;
        // Never through the middle of a character of two units.
        const code = root.row.text.charCodeAt(root.row.shownLength);
        const cut = code >= 0xdc00 && code <= 0xdfff ? root.row.shownLength - 1 : root.row.shownLength;
        return root.row.text.slice(0, cut) + "…";
    }

    gap: root.row.grouped ? 8 : 16

    Item {
        height: bubble.height
        width: root.width

        LazyPart {
            anchors.right: bubble.left
            anchors.rightMargin: Theme.space4
            anchors.verticalCenter: bubble.verticalCenter
            urgent: false
            wanted: root.rested || root.attended
            opacity: root.attended ? 1 : 0
            part: root.row.column.copy
            subject: root.row
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
    LazyPart {
        anchors.right: parent.right
        part: root.row.column.more
        subject: root.row
        wanted: root.row.hiddenLength > 0
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
    LazyPart {
        anchors.right: parent.right
        part: root.row.column.error
        subject: root.row
        wanted: root.row.errorText !== ""
    }
    LazyPart {
        anchors.right: parent.right
        part: root.row.column.retry
        subject: root.row
        wanted: root.row.retryOffered || root.row.retryBusy
    }
}
