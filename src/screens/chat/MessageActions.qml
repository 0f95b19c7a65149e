import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// What can be done with a reply. Always there, so that a screen reader finds it; in sight when the pointer or
/// the focus is on the message.
Row {
    id: root

    required property MessageItem row
    readonly property ChatModel chat: root.row.chat

    spacing: Theme.space4

    LMPIconButton {
        iconName: "copy"
        implicitHeight: Theme.target
        text: "复制回答"

        onClicked: root.chat.deeds.copyMessage(root.row.messageId)
    }
    LMPIconButton {
        readonly property bool speaking: root.chat.speech.messageId === root.row.messageId

        checked: speaking
        enabled: !root.row.streaming
        iconName: speaking ? "stop" : "speaker"
        implicitHeight: Theme.target
        text: speaking ? "停止朗读" : "朗读回答"

        onClicked: root.chat.speech.toggle(root.row.messageId)
    }
    LMPIconButton {
        checked: root.row.feedback === "positive"
        iconName: "thumb-up"
        implicitHeight: Theme.target
        text: root.row.feedback === "positive" ? "说得好（已选）" : "说得好"

        onClicked: root.chat.deeds.like(root.row.messageId)
    }
    LMPIconButton {
        checked: root.row.feedback === "negative"
        iconName: "thumb-down"
        implicitHeight: Theme.target
        text: root.row.feedback === "negative" ? "不太对（已选）" : "不太对，说说原因"

        onClicked: root.chat.deeds.openReasons(root.row.messageId)
    }
    LMPButton {
        busy: root.row.retryBusy
        iconName: "retry"
        implicitHeight: Theme.target
        kind: LMPButton.Quiet
        text: root.row.retryText
        visible: root.row.retryOffered || root.row.retryBusy

        onClicked: root.chat.retryReply(root.row.messageId)
    }
}
