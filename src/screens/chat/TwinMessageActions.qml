import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// What can be done with a reply. Always there, so that nothing moves and a screen reader finds it; in sight when the
/// pointer or the focus is on the message.
Flow {
    id: root

    required property MessageItem row
    property bool shown: false
    /// Whether the Tab key stops here: only on the way through the message that has the focus.
    property bool reachable: false
    readonly property ChatModel chat: root.row.chat

    opacity: root.shown ? 1 : 0
    spacing: Theme.dp(4)
    visible: !root.row.streaming

    LMPIconButton {
        activeFocusOnTab: root.reachable
        iconName: "copy"
        text: "复制回答"

        onClicked: root.chat.copyMessage(root.row.messageId)
    }
    LMPIconButton {
        activeFocusOnTab: root.reachable
        checkable: true
        checked: root.row.feedback === "positive"
        iconName: "thumb-up"
        text: "说得好"

        onClicked: root.chat.like(root.row.messageId)
    }
    LMPIconButton {
        activeFocusOnTab: root.reachable
        checkable: true
        checked: root.row.feedback === "negative"
        iconName: "thumb-down"
        text: "不太对，说说原因"

        onClicked: root.chat.openReasons(root.row.messageId)
    }
    LMPButton {
        activeFocusOnTab: root.reachable
        busy: root.row.retryBusy
        iconName: "retry"
        kind: LMPButton.Quiet
        text: root.row.retryText
        visible: root.row.retryOffered || root.row.retryBusy

        onClicked: root.chat.retryReply(root.row.messageId)
    }
}
