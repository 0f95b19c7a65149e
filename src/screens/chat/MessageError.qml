import QtQuick
import Lumenpair.Kit

/// What went wrong with a message. It stays with it.
Row {
    id: root

    property string text
    property real widest: 0

    spacing: Theme.space4
    visible: root.text !== ""

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
        text: root.text
        width: Math.min(Math.ceil(implicitWidth), root.widest - icon.width - root.spacing)
    }
}
