import QtQuick
import Lumenpair.Kit

/// What can be done with a message that did not arrive.
Row {
    id: root

    required property MessageItem row

    spacing: Theme.space4

    LMPButton {
        busy: root.row.retryBusy
        iconName: "retry"
        implicitHeight: Theme.target
        kind: LMPButton.Quiet
        text: "重试"
        visible: !root.row.chat.incognito

        onClicked: root.row.chat.retryMessage(root.row.messageId)
    }
    LMPButton {
        enabled: !root.row.retryBusy
        iconName: "edit"
        implicitHeight: Theme.target
        kind: LMPButton.Quiet
        text: "改一改再发"

        onClicked: root.row.column.editRequested(root.row.messageId)
    }
}
