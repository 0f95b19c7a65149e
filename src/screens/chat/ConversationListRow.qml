import QtQuick
import Lumenpair.Kit

/// One conversation of the list.
LMPRow {
    id: root

    required property int index
    required property string conversationId
    required property string timeText
    required title
    required subtitle
    required selected
    required unread
    required draft
    required waitingText

    readonly property ConversationListView view: ListView.view as ConversationListView

    function showSelected(): void {
        if (root.selected && root.view)
            root.view.currentIndex = root.index;
    }

    // The list is one stop on the way of the Tab key.
    focusPolicy: root.ListView.isCurrentItem ? Qt.StrongFocus : Qt.ClickFocus
    implicitHeight: Theme.dp(root.twoLine ? 52 : 36)
    trailingText: root.timeText
    twoLine: root.subtitle !== ""
    width: root.view ? root.view.rowWidth : 0

    Component.onCompleted: root.showSelected()
    onClicked: root.view.choose(root.index, root.conversationId)
    onSelectedChanged: root.showSelected()
}
