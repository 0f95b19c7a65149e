import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// Under a reply: what it drew on, what it cost and when, and what can be done with it.
///
/// Its height is known before its buttons are made, which happens when there is time: they are many, and nobody points
/// at a message that has only just come into sight. While the view moves they are not begun.
Item {
    id: root

    required property MessageItem row
    required property bool attended
    required property bool rested
    readonly property bool headed: root.row.usedCount > 0 || root.row.stateLine() !== ""
    readonly property bool stacked: root.headed && root.width < Theme.dp(690)

    implicitHeight: root.stacked ? 2 * Theme.target + Theme.space4 : Theme.target

    Row {
        id: head

        height: Theme.target
        spacing: Theme.space8

        LazyPart {
            part: root.row.column.usedChip
            subject: root.row
            wanted: root.row.usedCount > 0
        }
        LMPText {
            color: Theme.text3
            height: Theme.target
            kind: LMPText.Caption
            text: root.row.stateLine()
            verticalAlignment: Text.AlignVCenter
            visible: text !== ""
        }
    }
    LazyPart {
        enabled: !root.row.streaming
        urgent: false
        wanted: root.rested || root.attended
        opacity: !root.row.streaming && (root.attended || root.row.last || root.row.retryBusy) ? 1 : 0
        part: root.row.column.actions
        subject: root.row
        x: root.stacked || !root.headed ? 0 : head.width + Theme.space4
        y: root.implicitHeight - Theme.target
    }
}
