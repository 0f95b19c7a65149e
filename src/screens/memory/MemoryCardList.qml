import QtQuick
import QtQuick.Templates as T
import Lumenpair.Kit
import Lumenpair.Memory

/// Cards below each other: one stop for the Tab key, the arrows go from card to card, and Tab goes on into the card. A
/// card that is taller than the list is read to its end before they leave it.
ListView {
    id: root

    required property MemoryLedgerModel ledger
    /// How wide a card is at most; the list itself reaches to the window's edge.
    property real cardWidth: Theme.dp(760)
    readonly property real cardMargin: Math.max(Theme.space20, Math.round((root.width - root.cardWidth) / 2))

    /// Gives the keyboard to a card, which is seen from its beginning, or from its end on the way up.
    function go(index: int, up: bool): void {
        if (index < 0 || index >= root.count)
            return;
        root.currentIndex = index;
        root.positionViewAtIndex(index, ListView.Contain);
        if (root.currentItem.height > root.height)
            root.positionViewAtIndex(index, up ? ListView.End : ListView.Beginning);
        root.currentItem.forceActiveFocus(Qt.TabFocusReason);
    }

    /// How much of the current card lies beyond the edge, below or above.
    function hidden(up: bool): real {
        if (!root.currentItem)
            return 0;
        const top = root.currentItem.y - root.contentY;
        return up ? -top : top + root.currentItem.height - root.height;
    }

    function scroll(by: real): void {
        const from = root.originY - root.topMargin;
        const to = Math.max(from, root.originY + root.contentHeight + root.bottomMargin - root.height);
        root.contentY = Math.max(from, Math.min(to, root.contentY + by));
    }

    function step(up: bool): void {
        const rest = root.hidden(up);
        if (rest > 1)
            root.scroll((up ? -1 : 1) * Math.min(rest, root.height / 2));
        else
            root.go(root.currentIndex + (up ? -1 : 1), up);
    }

    /// A view's height on, and the keyboard to what is seen there.
    function page(up: bool): void {
        root.scroll((up ? -1 : 1) * (root.height - Theme.control));
        const edge = root.contentY + (up ? Theme.space16 : root.height - Theme.space16);
        const index = root.indexAt(root.width / 2, edge);
        if (index < 0)
            return;
        root.currentIndex = index;
        root.currentItem.forceActiveFocus(Qt.TabFocusReason);
    }

    Accessible.role: Accessible.List
    Keys.onPressed: event => {
        event.accepted = true;
        switch (event.key) {
        case Qt.Key_Down:
        case Qt.Key_Up:
            root.step(event.key === Qt.Key_Up);
            break;
        case Qt.Key_PageDown:
        case Qt.Key_PageUp:
            root.page(event.key === Qt.Key_PageUp);
            break;
        case Qt.Key_Home:
            root.go(0, false);
            break;
        case Qt.Key_End:
            root.go(root.count - 1, true);
            break;
        default:
            event.accepted = false;
        }
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
