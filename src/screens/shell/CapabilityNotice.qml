import QtQuick
import Lumenpair.Kit

/// What the service says of one feature, where that feature is shown.
Item {
    id: root

    required property string text
    /// More than these are left out; a screen reader hears all of it.
    property int mostLines: 100

    Accessible.name: root.text
    Accessible.role: Accessible.StaticText
    implicitHeight: words.height

    LMPIcon {
        id: icon

        color: Theme.text3
        name: "info"
        size: 16
        y: Math.round((words.lineHeight - height) / 2)
    }

    LMPText {
        id: words

        Accessible.ignored: true
        color: Theme.text2
        elide: Text.ElideRight
        kind: LMPText.Caption
        maximumLineCount: root.mostLines
        text: root.text
        width: parent.width - x
        x: icon.width + Theme.dp(8)
    }
}
