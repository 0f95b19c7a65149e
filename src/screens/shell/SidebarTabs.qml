import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// The five tabs, one below the other. The arrows move between them.
FocusScope {
    id: root

    required property WindowNavigation navigation
    property bool collapsed: false
    readonly property list<string> titles: ["当下", "社交", "市场", "工坊", "我的"]
    readonly property list<string> icons: ["now", "social", "market", "studio", "me"]

    signal chosen

    function focusCurrent(): void {
        rows.itemAt(root.navigation.tab).forceActiveFocus(Qt.ShortcutFocusReason);
    }

    function step(from: int, by: int): void {
        const next = from + by;
        if (next >= 0 && next < rows.count)
            rows.itemAt(next).forceActiveFocus(Qt.TabFocusReason);
    }

    function choose(index: int): void {
        root.navigation.tab = index;
        root.chosen();
    }

    Accessible.name: "标签页"
    Accessible.role: Accessible.PageTabList
    implicitHeight: column.implicitHeight

    Column {
        id: column

        spacing: Theme.dp(2)
        width: parent.width - 2 * x
        x: Theme.dp(8)

        Repeater {
            id: rows

            model: root.titles

            delegate: SidebarTab {
                required property int index
                required property string modelData

                Keys.onDownPressed: root.step(index, 1)
                Keys.onUpPressed: root.step(index, -1)
                collapsed: root.collapsed
                focus: index === root.navigation.tab
                iconName: root.icons[index]
                selected: index === root.navigation.tab
                title: modelData
                width: column.width
                onClicked: root.choose(index)
            }
        }
    }
}
