import QtQuick
import QtQuick.Templates as T
import Lumenpair.Kit

/// The rows of the list of conversations: one stop for the Tab key, the arrows go from row to row, Enter opens one.
ListView {
    id: root

    /// The bar has the margin at the right to itself.
    readonly property real rowWidth: root.width - Theme.dp(10)

    signal chosen(conversationId: string)

    function choose(index: int, conversationId: string): void {
        root.currentIndex = index;
        root.chosen(conversationId);
    }
    /// As Enter in the field that finds.
    function openFirst(): void {
        root.go(0);
        const row = root.currentItem as T.AbstractButton;
        if (row)
            row.clicked();
    }
    /// Gives the keyboard to a row.
    function go(index: int): void {
        if (index < 0 || index >= root.count)
            return;
        root.currentIndex = index;
        root.positionViewAtIndex(index, ListView.Contain);
        root.currentItem.forceActiveFocus(Qt.TabFocusReason);
    }

    Accessible.name: "对话"
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
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    currentIndex: 0
    highlightFollowsCurrentItem: false
    keyNavigationEnabled: false
}
