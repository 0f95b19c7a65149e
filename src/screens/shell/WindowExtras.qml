import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// What every window has besides its screen: keys, menus, the quick switcher and the questions that are asked anywhere.
Item {
    id: root

    required property WindowScene scene

    function openSwitcher(): void {
        if (switcher.status === Loader.Null)
            switcher.setSource("QuickSwitcher.qml", {
                model: root.scene.switcher
            });
        (switcher.item as QuickSwitcher).open();
    }

    Component.onCompleted: {
        if (Qt.platform.os === "osx")
            menus.setSource("MacMenus.qml", {
                scene: root.scene
            });
    }

    Instantiator {
        model: root.scene.commands

        delegate: Shortcut {
            id: shortcut

            required property bool available
            required property int command
            required property var keys

            enabled: shortcut.available && shortcut.keys.length > 0
            sequences: shortcut.keys
            onActivated: root.scene.commands.run(shortcut.command)
        }
    }

    Loader {
        id: switcher
    }

    Loader {
        id: menus
    }

    Loader {
        active: root.scene.asking && root.scene.quitting.state === MacQuitCoordinator.Warning

        sourceComponent: QuitDialog {
            quitting: root.scene.quitting
        }
    }

    Loader {
        active: root.scene.closeWarning

        sourceComponent: CloseDialog {
            onAnswered: retry => retry ? root.scene.saveAndClose() : root.scene.stayOpen()
        }
    }

    Loader {
        active: root.scene.leaveWarning

        sourceComponent: LeaveDialog {
            onAnswered: leave => root.scene.answerLeave(leave)
        }
    }

    Loader {
        active: root.scene.asking && root.scene.updates !== null && root.scene.updates.alertOpen

        sourceComponent: UpdateDialog {
            updates: root.scene.updates
        }
    }

    Connections {
        function onTriggered(command: int): void {
            if (command === WindowCommands.Switcher)
                root.openSwitcher();
        }

        target: root.scene.commands
    }
}
