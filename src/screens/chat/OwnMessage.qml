import QtQuick
import Lumenpair.Kit

/// What the user said: a soft bubble at the right, and under it what became of it.
MessageFrame {
    id: root

    /// How much of a long text is laid out; the rest comes on demand, since a megabyte takes longer than a frame.
    property int shownLength: 6000
    readonly property int hiddenLength: Math.max(0, root.row.text.length - root.shownLength)

    function shownText(): string {
        if (root.hiddenLength === 0)
            return root.row.text;
        // Never through the middle of a character of two units.
        const code = root.row.text.charCodeAt(root.shownLength);
        const cut = code >= 0xdc00 && code <= 0xdfff ? root.shownLength - 1 : root.shownLength;
        return root.row.text.slice(0, cut) + "…";
    }

    Item {
        height: bubble.height
        width: root.availableWidth

        Rectangle {
            id: bubble

            anchors.right: parent.right
            color: Theme.ownBubble
            height: words.height + 2 * Theme.dp(8)
            radius: Theme.radiusCard
            width: words.width + 2 * Theme.dp(12)

            MessageText {
                id: words

                readonly property real widest: Math.floor(root.availableWidth * 0.75) - 2 * Theme.dp(12)

                text: root.shownText()
                width: Math.min(words.widest, Math.ceil(words.implicitWidth))
                x: Theme.dp(12)
                y: Theme.dp(8)
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
    MessageState {
        anchors.right: parent.right
        row: root.row
        maximumWidth: root.availableWidth * 0.75
        atRight: true
    }
    OwnMessageActions {
        anchors.right: parent.right
        row: root.row
        shown: root.attended || root.row.retryOffered
        reachable: root.row.focused
    }
}
