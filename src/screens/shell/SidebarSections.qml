import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// What there is below the tab "me": what the twin knows, and the parts of the settings.
SidebarList {
    id: root

    function go(section: int): void {
        root.scene.navigation.openSection(section);
        root.chosen();
    }

    Accessible.name: "我的"
    Accessible.role: Accessible.List

    Column {
        spacing: Theme.dp(2)
        width: parent.width - 2 * x
        x: Theme.dp(8)

        SettingsRow {
            focus: true
            iconName: "memory"
            selected: root.scene.navigation.page === WindowNavigation.Memory
            title: "记忆账本"
            onClicked: {
                root.scene.navigation.openMemory();
                root.chosen();
            }
        }

        SettingsRow {
            iconName: "user"
            title: "账号"
            onClicked: root.go(WindowNavigation.Account)
        }

        SettingsRow {
            iconName: "sun"
            title: "外观"
            onClicked: root.go(WindowNavigation.Appearance)
        }

        SettingsRow {
            iconName: "lock"
            title: "隐私"
            onClicked: root.go(WindowNavigation.Privacy)
        }

        SettingsRow {
            iconName: "spark"
            title: "功能"
            onClicked: root.go(WindowNavigation.Features)
        }

        SettingsRow {
            iconName: "download"
            title: "更新与关于"
            onClicked: root.go(WindowNavigation.Updates)
        }

        SettingsRow {
            iconName: "code"
            title: "快捷键"
            onClicked: root.go(WindowNavigation.Keys)
        }

        SettingsRow {
            iconName: "care"
            title: "求助热线"
            onClicked: root.scene.navigation.openCrisis()
        }
    }
}
