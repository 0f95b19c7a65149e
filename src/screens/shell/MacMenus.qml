import QtQuick
import Qt.labs.platform
import Lumenpair.Shell

/// The menu bar that every program has there. Read on that platform alone.
MenuBar {
    id: root

    required property WindowScene scene

    /// What the text that has the keyboard can do; nothing where there is none.
    function edit(how: string): void {
        const window = root.window as Window;
        const item = window ? window.activeFocusItem : null;
        if (item && typeof item[how] === "function")
            item[how]();
    }

    Menu {
        title: "Lumenpair"

        MacMenuItem {
            command: AppCommands.Settings
            commands: root.scene.commands
            role: MenuItem.PreferencesRole
            shortcut: "Ctrl+,"
            text: "设置…"
        }

        MacMenuItem {
            command: AppCommands.CheckUpdates
            commands: root.scene.commands
            role: MenuItem.ApplicationSpecificRole
            text: "检查更新…"
        }

        MacMenuItem {
            command: AppCommands.Quit
            commands: root.scene.commands
            role: MenuItem.QuitRole
            shortcut: "Ctrl+Q"
            text: "退出 Lumenpair"
        }
    }

    Menu {
        title: "文件"

        MacMenuItem {
            command: AppCommands.NewConversation
            commands: root.scene.commands
            shortcut: "Ctrl+N"
            text: "新对话"
        }

        MacMenuItem {
            command: AppCommands.NewIncognito
            commands: root.scene.commands
            text: "新的无痕对话"
        }

        MacMenuItem {
            command: AppCommands.NewWindow
            commands: root.scene.commands
            shortcut: "Ctrl+Shift+N"
            text: "新窗口"
        }

        MenuSeparator {
        }

        MacMenuItem {
            command: AppCommands.CloseWindow
            commands: root.scene.commands
            shortcut: "Ctrl+W"
            text: "关闭窗口"
        }
    }

    Menu {
        title: "编辑"

        MenuItem {
            shortcut: "Ctrl+Z"
            text: "撤销"
            onTriggered: root.edit("undo")
        }

        MenuItem {
            shortcut: "Ctrl+Shift+Z"
            text: "重做"
            onTriggered: root.edit("redo")
        }

        MenuSeparator {
        }

        MenuItem {
            shortcut: "Ctrl+X"
            text: "剪切"
            onTriggered: root.edit("cut")
        }

        MenuItem {
            shortcut: "Ctrl+C"
            text: "复制"
            onTriggered: root.edit("copy")
        }

        MenuItem {
            shortcut: "Ctrl+V"
            text: "粘贴"
            onTriggered: root.edit("paste")
        }

        MenuItem {
            shortcut: "Ctrl+A"
            text: "全选"
            onTriggered: root.edit("selectAll")
        }

        MenuSeparator {
        }

        MacMenuItem {
            command: AppCommands.Find
            commands: root.scene.commands
            shortcut: "Ctrl+F"
            text: "在这段对话里查找"
        }

        MacMenuItem {
            command: AppCommands.FindEverywhere
            commands: root.scene.commands
            shortcut: "Ctrl+Shift+F"
            text: "在所有对话里查找"
        }

        MacMenuItem {
            command: AppCommands.FindList
            commands: root.scene.commands
            text: "在对话列表里查找"
        }
    }

    Menu {
        title: "显示"

        MacMenuItem {
            command: AppCommands.Larger
            commands: root.scene.commands
            shortcut: "Ctrl++"
            text: "放大"
        }

        MacMenuItem {
            command: AppCommands.Smaller
            commands: root.scene.commands
            shortcut: "Ctrl+-"
            text: "缩小"
        }

        MacMenuItem {
            command: AppCommands.ResetScale
            commands: root.scene.commands
            shortcut: "Ctrl+0"
            text: "恢复原来的大小"
        }

        MenuSeparator {
        }

        MacMenuItem {
            command: AppCommands.ToggleSidebar
            commands: root.scene.commands
            shortcut: "Ctrl+B"
            text: "收起或展开侧栏"
        }
    }

    Menu {
        title: "前往"

        MacMenuItem {
            command: AppCommands.Switcher
            commands: root.scene.commands
            shortcut: "Ctrl+K"
            text: "快速切换…"
        }

        MacMenuItem {
            command: AppCommands.PreviousConversation
            commands: root.scene.commands
            shortcut: "Alt+Up"
            text: "上一段对话"
        }

        MacMenuItem {
            command: AppCommands.NextConversation
            commands: root.scene.commands
            shortcut: "Alt+Down"
            text: "下一段对话"
        }
    }

    Menu {
        title: "窗口"

        MenuItem {
            shortcut: "Ctrl+M"
            text: "最小化"
            onTriggered: root.window.showMinimized()
        }
    }

    Menu {
        title: "帮助"

        MacMenuItem {
            command: AppCommands.Crisis
            commands: root.scene.commands
            text: "求助热线"
        }
    }
}
