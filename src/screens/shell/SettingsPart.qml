import QtQuick
import Lumenpair.Kit

/// One part of the settings: its heading, and what belongs to it.
Column {
    id: root

    property string title

    Accessible.name: root.title
    Accessible.role: Accessible.Grouping
    spacing: Theme.dp(12)

    LMPText {
        Accessible.role: Accessible.Heading
        kind: LMPText.H2
        text: root.title
        width: parent.width
    }
}
