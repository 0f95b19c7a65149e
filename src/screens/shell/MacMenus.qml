import QtQuick
import Qt.labs.platform
import Lumenpair.Shell

/// The menu bar that every program has there. Read on that platform alone.
MenuBar {
    id: root

    required property WindowScene scene

    Menu {
        title: "Lumenpair"

        MenuItem {
            role: MenuItem.PreferencesRole
            shortcut: StandardKey.Preferences
            text: "设置…"
            onTriggered: root.scene.commands.run(WindowCommands.Settings)
        }

        MenuItem {
            role: MenuItem.ApplicationSpecificRole
            text: "检查更新…"
            onTriggered: root.scene.commands.run(WindowCommands.CheckUpdates)
        }

        MenuItem {
            role: MenuItem.QuitRole
            shortcut: StandardKey.Quit
            text: "退出 Lumenpair"
            onTriggered: root.scene.commands.run(WindowCommands.Quit)
        }
    }

    Menu {
        title: "文件"

        MenuItem {
            text: "新对话"
            onTriggered: root.scene.commands.run(WindowCommands.NewConversation)
        }

        MenuItem {
            text: "新的无痕对话"
            onTriggered: root.scene.commands.run(WindowCommands.NewIncognito)
        }

        MenuItem {
            text: "新窗口"
            onTriggered: root.scene.commands.run(WindowCommands.NewWindow)
        }

        MenuItem {
            text: "关闭窗口"
            onTriggered: root.scene.commands.run(WindowCommands.CloseWindow)
        }
    }

    Menu {
        title: "前往"

        MenuItem {
            text: "快速切换…"
            onTriggered: root.scene.commands.run(WindowCommands.Switcher)
        }

        MenuItem {
            text: "上一段对话"
            onTriggered: root.scene.commands.run(WindowCommands.PreviousConversation)
        }

        MenuItem {
            text: "下一段对话"
            onTriggered: root.scene.commands.run(WindowCommands.NextConversation)
        }
    }

    Menu {
        title: "显示"

        MenuItem {
            text: "放大"
            onTriggered: root.scene.commands.run(WindowCommands.Larger)
        }

        MenuItem {
            text: "缩小"
            onTriggered: root.scene.commands.run(WindowCommands.Smaller)
        }

        MenuItem {
            text: "恢复原来的大小"
            onTriggered: root.scene.commands.run(WindowCommands.ResetScale)
        }

        MenuItem {
            text: "收起或展开侧栏"
            onTriggered: root.scene.commands.run(WindowCommands.ToggleSidebar)
        }
    }

    Menu {
        title: "帮助"

        MenuItem {
            text: "求助热线"
            onTriggered: root.scene.commands.run(WindowCommands.Crisis)
        }
    }
}
