import QtQuick
import Lumenpair.Kit

/// Copies a message of one's own.
LMPIconButton {
    id: root

    required property MessageItem row

    iconName: "copy"
    implicitHeight: Theme.target
    text: "复制这条消息"

    onClicked: root.row.chat.deeds.copyMessage(root.row.messageId)
}
