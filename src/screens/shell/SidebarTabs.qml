import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// The five tabs, one below the other. The arrows move between them.
FocusScope {
    id: root

    required property WindowNavigation navigation
    property bool collapsed: false

    signal chosen

    function focusCurrent(): void {
        column.children[root.navigation.tab].forceActiveFocus(Qt.ShortcutFocusReason);
    }

    function choose(tab: int): void {
        root.navigation.tab = tab;
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

        SidebarTab {
            collapsed: root.collapsed
            iconName: "now"
            selected: root.navigation.tab === WindowNavigation.Now
            title: "当下"
            onClicked: root.choose(WindowNavigation.Now)
        }

        SidebarTab {
            collapsed: root.collapsed
            iconName: "social"
            selected: root.navigation.tab === WindowNavigation.Social
            title: "社交"
            onClicked: root.choose(WindowNavigation.Social)
        }

        SidebarTab {
            collapsed: root.collapsed
            iconName: "market"
            selected: root.navigation.tab === WindowNavigation.Market
            title: "市场"
            onClicked: root.choose(WindowNavigation.Market)
        }

        SidebarTab {
            collapsed: root.collapsed
            iconName: "studio"
            selected: root.navigation.tab === WindowNavigation.Studio
            title: "工坊"
            onClicked: root.choose(WindowNavigation.Studio)
        }

        SidebarTab {
            collapsed: root.collapsed
            iconName: "me"
            selected: root.navigation.tab === WindowNavigation.Me
            title: "我的"
            onClicked: root.choose(WindowNavigation.Me)
        }
    }
}
