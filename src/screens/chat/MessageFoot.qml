import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// Under a reply: what it drew on, what it cost and when, and what can be done with it.
///
/// What can be done is always there, so that nothing moves and a screen reader finds it; it is in sight when the pointer
/// or the focus is on the message, and under the last one.
Flow {
    id: root

    required property MessageItem row
    required property bool attended
    readonly property ChatModel chat: root.row.chat
    readonly property bool ready: !root.row.streaming
    readonly property real ink: root.ready && (root.attended || root.row.last || root.row.retryBusy) ? 1 : 0

    spacing: Theme.space4

    LMPChip {
        clickable: true
        iconName: "memory"
        text: root.row.usedText
        visible: root.row.usedCount > 0

        onClicked: root.chat.openUsed(root.row.messageId)
    }
    LMPText {
        color: Theme.text3
        height: Theme.target
        kind: LMPText.Caption
        rightPadding: Theme.space4
        text: root.row.stateLine()
        verticalAlignment: Text.AlignVCenter
        visible: text !== ""
    }
    LMPIconButton {
        enabled: root.ready
        iconName: "copy"
        implicitHeight: Theme.target
        opacity: root.ink
        text: "复制回答"

        onClicked: root.chat.copyMessage(root.row.messageId)
    }
    LMPIconButton {
        checked: root.row.feedback === "positive"
        enabled: root.ready
        iconName: "thumb-up"
        implicitHeight: Theme.target
        opacity: root.ink
        text: root.row.feedback === "positive" ? "说得好（已选）" : "说得好"

        onClicked: root.chat.like(root.row.messageId)
    }
    LMPIconButton {
        checked: root.row.feedback === "negative"
        enabled: root.ready
        iconName: "thumb-down"
        implicitHeight: Theme.target
        opacity: root.ink
        text: root.row.feedback === "negative" ? "不太对（已选）" : "不太对，说说原因"

        onClicked: root.chat.openReasons(root.row.messageId)
    }
    LMPButton {
        busy: root.row.retryBusy
        enabled: root.ready
        iconName: "retry"
        implicitHeight: Theme.target
        kind: LMPButton.Quiet
        opacity: root.ink
        text: root.row.retryText
        visible: root.row.retryOffered || root.row.retryBusy

        onClicked: root.chat.retryReply(root.row.messageId)
    }
}
