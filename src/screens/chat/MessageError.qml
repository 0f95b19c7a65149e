import QtQuick
import Lumenpair.Kit

/// What went wrong with a message. It stays with it.
Row {
    id: root

    required property MessageItem row
    readonly property real widest: Math.floor(root.row.width * (root.row.own ? 0.75 : 1))

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
        width: words.balanced(root.widest - icon.width - root.spacing)
    }
}
