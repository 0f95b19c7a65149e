import QtQuick
import Lumenpair.Kit

/// How many memories a reply drew on; shows which.
LMPChip {
    id: root

    required property MessageItem row

    clickable: true
    iconName: "memory"
    text: root.row.usedText

    onClicked: root.row.chat.deeds.openUsed(root.row.messageId)
}
