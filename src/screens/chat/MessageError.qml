import QtQuick
import Lumenpair.Kit

/// What went wrong with a message, and how to see what became of it. It stays with it.
Column {
    id: root

    required property MessageItem row
    readonly property real widest: Math.floor(root.row.width * (root.row.own ? 0.75 : 1))

    spacing: Theme.space4

    Row {
        id: line

        anchors.right: root.row.own ? root.right : undefined
        spacing: Theme.space4

        LMPIcon {
            id: icon

            color: Theme.danger
            name: "error"
            size: 14
            y: Math.round((words.lineHeight - height) / 2)
        }
        LMPText {
            id: words

            Accessible.ignored: true
            color: Theme.danger
            kind: LMPText.Caption
            text: root.row.errorText
            width: words.balanced(root.widest - icon.width - line.spacing)
        }
    }
    LMPButton {
        anchors.right: root.row.own ? root.right : undefined
        enabled: root.row.chat.idle
        iconName: "retry"
        implicitHeight: Theme.target
        kind: LMPButton.Quiet
        text: "重新打开对话"
        visible: root.row.reopenOffered

        onClicked: root.row.chat.reopen()
    }
}
