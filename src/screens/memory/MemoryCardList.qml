import QtQuick
import QtQuick.Templates as T
import Lumenpair.Kit
import Lumenpair.Memory

/// Cards below each other: one stop for the Tab key, the arrows go from card to card, and Tab goes on into the card.
ListView {
    id: root

    required property MemoryLedgerModel ledger
    /// How wide a card is at most; the list itself reaches to the window's edge.
    property real cardWidth: Theme.dp(760)
    readonly property real cardMargin: Math.max(Theme.space20, Math.round((root.width - root.cardWidth) / 2))

    /// Gives the keyboard to a card.
    function go(index: int): void {
        if (index < 0 || index >= root.count)
            return;
        root.currentIndex = index;
        root.positionViewAtIndex(index, ListView.Contain);
        root.currentItem.forceActiveFocus(Qt.TabFocusReason);
    }

    Accessible.role: Accessible.List
    Keys.onDownPressed: root.go(root.currentIndex + 1)
    Keys.onUpPressed: root.go(root.currentIndex - 1)
    Keys.onPressed: event => {
        if (event.key !== Qt.Key_Home && event.key !== Qt.Key_End)
            return;
        root.go(event.key === Qt.Key_Home ? 0 : root.count - 1);
        event.accepted = true;
    }
    T.ScrollBar.vertical: LMPScrollBar {}
    bottomMargin: Theme.space32
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    currentIndex: 0
    highlightFollowsCurrentItem: false
    keyNavigationEnabled: false
    spacing: Theme.space12
    topMargin: Theme.space8
}
