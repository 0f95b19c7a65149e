import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// What can be done with a message of one's own.
Row {
    id: root

    required property MessageItem row
    property bool shown: false
    /// Whether the Tab key stops here: only on the way through the message that has the focus.
    property bool reachable: false
    readonly property ChatModel chat: root.row.chat

    opacity: root.shown ? 1 : 0
    spacing: Theme.dp(4)

    LMPIconButton {
        activeFocusOnTab: root.reachable
        iconName: "copy"
        text: "复制这条消息"

        onClicked: root.chat.copyMessage(root.row.messageId)
    }
    LMPButton {
        activeFocusOnTab: root.reachable
        busy: root.row.retryBusy
        iconName: "retry"
        kind: LMPButton.Quiet
        text: "重试"
        visible: root.row.retryOffered || root.row.retryBusy

        onClicked: root.chat.retryMessage(root.row.messageId)
    }
    LMPButton {
        activeFocusOnTab: root.reachable
        iconName: "edit"
        kind: LMPButton.Quiet
        text: "改一改再发"
        visible: root.row.retryOffered && !root.row.retryBusy

        onClicked: root.row.column.editRequested(root.row.messageId)
    }
}
