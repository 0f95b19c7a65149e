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

        MenuItem {
            role: MenuItem.PreferencesRole
            shortcut: "Ctrl+,"
            text: "设置…"
            onTriggered: root.scene.commands.run(AppCommands.Settings)
        }

        MenuItem {
            role: MenuItem.ApplicationSpecificRole
            text: "检查更新…"
            onTriggered: root.scene.commands.run(AppCommands.CheckUpdates)
        }

        MenuItem {
            role: MenuItem.QuitRole
            shortcut: "Ctrl+Q"
            text: "退出 Lumenpair"
            onTriggered: root.scene.commands.run(AppCommands.Quit)
        }
    }

    Menu {
        title: "文件"

        MenuItem {
            shortcut: "Ctrl+N"
            text: "新对话"
            onTriggered: root.scene.commands.run(AppCommands.NewConversation)
        }

        MenuItem {
            text: "新的无痕对话"
            onTriggered: root.scene.commands.run(AppCommands.NewIncognito)
        }

        MenuItem {
            shortcut: "Ctrl+Shift+N"
            text: "新窗口"
            onTriggered: root.scene.commands.run(AppCommands.NewWindow)
        }

        MenuSeparator {
        }

        MenuItem {
            shortcut: "Ctrl+W"
            text: "关闭窗口"
            onTriggered: root.scene.commands.run(AppCommands.CloseWindow)
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

        MenuItem {
            shortcut: "Ctrl+F"
            text: "在这段对话里查找"
            onTriggered: root.scene.commands.run(AppCommands.Find)
        }

        MenuItem {
            shortcut: "Ctrl+Shift+F"
            text: "在所有对话里查找"
            onTriggered: root.scene.commands.run(AppCommands.FindEverywhere)
        }

        MenuItem {
            text: "在对话列表里查找"
            onTriggered: root.scene.commands.run(AppCommands.FindList)
        }
    }

    Menu {
        title: "显示"

        MenuItem {
            shortcut: "Ctrl++"
            text: "放大"
            onTriggered: root.scene.commands.run(AppCommands.Larger)
        }

        MenuItem {
            shortcut: "Ctrl+-"
            text: "缩小"
            onTriggered: root.scene.commands.run(AppCommands.Smaller)
        }

        MenuItem {
            shortcut: "Ctrl+0"
            text: "恢复原来的大小"
            onTriggered: root.scene.commands.run(AppCommands.ResetScale)
        }

        MenuSeparator {
        }

        MenuItem {
            shortcut: "Ctrl+B"
            text: "收起或展开侧栏"
            onTriggered: root.scene.commands.run(AppCommands.ToggleSidebar)
        }
    }

    Menu {
        title: "前往"

        MenuItem {
            shortcut: "Ctrl+K"
            text: "快速切换…"
            onTriggered: root.scene.commands.run(AppCommands.Switcher)
        }

        MenuItem {
            shortcut: "Alt+Up"
            text: "上一段对话"
            onTriggered: root.scene.commands.run(AppCommands.PreviousConversation)
        }

        MenuItem {
            shortcut: "Alt+Down"
            text: "下一段对话"
            onTriggered: root.scene.commands.run(AppCommands.NextConversation)
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

        MenuItem {
            text: "求助热线"
            onTriggered: root.scene.commands.run(AppCommands.Crisis)
        }
    }
}
