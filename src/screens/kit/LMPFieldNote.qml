import QtQuick

/// Below a field: help, or with an icon what is wrong.
Row {
    id: root

    property bool failed: false
    property string text

    spacing: Theme.space4

    LMPIcon {
        color: Theme.danger
        name: root.failed ? "error" : ""
        size: 14
        visible: root.failed
        y: Math.round((note.lineHeight - height) / 2)
    }

    LMPText {
        id: note

        Accessible.ignored: true
        color: root.failed ? Theme.danger : Theme.text2
        kind: LMPText.Caption
        text: root.text
        width: root.width - (root.failed ? Theme.dp(18) : 0)
    }
}
