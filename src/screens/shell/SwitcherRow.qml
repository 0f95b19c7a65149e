import QtQuick
import Lumenpair.Kit

/// One entry of the quick switcher. The keyboard stays with what is typed.
LMPRow {
    id: root

    required property int index
    required property string kindText
    required property string shortcutText
    required draft
    required iconName
    required title
    required unread
    readonly property SwitcherList list: ListView.view as SwitcherList

    focusPolicy: Qt.NoFocus
    rightPadding: Theme.dp(16)
    selected: ListView.isCurrentItem
    trailingText: root.shortcutText === "" ? root.kindText : root.shortcutText
    width: root.list ? root.list.rowWidth : implicitWidth
    onClicked: root.list.taken(root.index)
}
