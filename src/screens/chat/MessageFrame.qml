import QtQuick
import QtQuick.Templates as T
import Lumenpair.Kit

/// What every message has: its stop on the way of the Tab key, its ring, its name for who listens, its pointer.
///
/// The Tab key stops at the messages in sight, and inside the one that has the focus at what can be done with it.
T.Control {
    id: root

    required property MessageItem row
    readonly property bool attended: root.hovered || root.row.focused
    readonly property bool still: !root.row.column.moving
    /// Whether the view has stood still with this: nobody points at what only passes by.
    property bool rested: false
    /// To the message above, in lengths of the design.
    property real gap: 20
    default property alias parts: column.data

    Accessible.focusable: true
    Accessible.name: root.row.spoken()
    Accessible.role: Accessible.ListItem
    focusPolicy: root.row.seen ? Qt.TabFocus : Qt.NoFocus
    hoverEnabled: true
    implicitHeight: column.y + column.height

    Component.onCompleted: root.rested = root.still
    onStillChanged: {
        if (root.still)
            root.rested = true;
    }

    Loader {
        active: root.visualFocus
        anchors.fill: column

        sourceComponent: LMPFocusRing {
            around: Theme.radiusRow
            shown: true
        }
    }
    Keys.onPressed: event => {
        if (event.matches(StandardKey.Copy)) {
            root.row.chat.deeds.copyMessage(root.row.messageId);
            event.accepted = true;
        }
    }

    Column {
        id: column

        spacing: Theme.space4
        width: root.width
        y: Theme.dp(root.gap)
    }
}
