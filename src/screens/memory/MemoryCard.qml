import QtQuick
import Lumenpair.Kit
import Lumenpair.Memory

/// A card of a MemoryCardList: it can have the keyboard itself, and its buttons can while it is the current one.
FocusScope {
    id: root

    default property alias body: column.data
    property string accessibleName
    readonly property MemoryCardList list: ListView.view as MemoryCardList
    readonly property bool current: ListView.isCurrentItem
    /// What the buttons on it take for theirs.
    readonly property int buttonPolicy: root.current ? Qt.StrongFocus : Qt.ClickFocus

    signal activated

    Accessible.focusable: true
    Accessible.name: root.accessibleName
    Accessible.role: Accessible.ListItem
    Keys.onEnterPressed: root.activated()
    Keys.onReturnPressed: root.activated()
    // Not before the keyboard has gone on.
    activeFocusOnTab: root.current || root.activeFocus
    implicitHeight: card.implicitHeight
    width: root.list ? root.list.width : 0

    LMPCard {
        id: card

        Accessible.ignored: true
        width: root.list ? root.list.width - 2 * root.list.cardMargin : 0
        x: root.list ? root.list.cardMargin : 0

        Column {
            id: column

            spacing: Theme.space8
            width: parent.width
        }
    }

    LMPFocusRing {
        anchors.fill: card
        around: card.radius
        shown: root.Window.activeFocusItem === root
    }
}
