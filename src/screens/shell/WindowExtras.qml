import QtQuick
import QtQuick.Templates as T
import Lumenpair.Chat
import Lumenpair.Kit
import Lumenpair.Shell

/// What every window has besides its screen: keys, menus, the quick switcher and the questions that are asked anywhere.
///
/// A control, though it shows nothing: keys that are claimed before the templates are loaded would not be held back by
/// what lies over the window.
T.Control {
    id: root

    required property WindowScene scene

    function openSwitcher(): void {
        if (switcher.status === Loader.Null)
            switcher.setSource("QuickSwitcher.qml", {
                model: root.scene.switcher
            });
        (switcher.item as QuickSwitcher).open();
    }

    function openSearch(): void {
        if (root.scene.search === null)
            return;
        if (search.status === Loader.Null)
            search.setSource("qrc:/qt/qml/Lumenpair/Chat/SearchSheet.qml", {
                model: root.scene.search
            });
        (search.item as SearchSheet).open();
    }

    function tie(key: WindowKey): void {
        key.activated.connect(() => root.scene.commands.run(key.command));
    }

    Component.onCompleted: {
        if (Qt.platform.os === "osx")
            menus.setSource("MacMenus.qml", {
                scene: root.scene,
                window: root.Window.window
            });
    }

    Instantiator {
        model: root.scene.commands

        delegate: WindowKey {
        }

        onObjectAdded: (index, object) => root.tie(object as WindowKey)
    }

    LMPFocusKeeper {
    }

    Loader {
        id: switcher
    }

    Loader {
        id: search
    }

    Loader {
        id: menus
    }

    QuestionLoader {
        asked: root.scene.questions.hostsProgram && root.scene.quitting.state === MacQuitCoordinator.Warning
        file: "QuitDialog.qml"
        scene: root.scene
    }

    QuestionLoader {
        asked: root.scene.questions.hostsProgram && root.scene.updates !== null && root.scene.updates.alertOpen
        file: "UpdateDialog.qml"
        scene: root.scene
    }

    QuestionLoader {
        asked: root.scene.questions.closeWarning
        file: "CloseDialog.qml"
        scene: root.scene
    }

    QuestionLoader {
        asked: root.scene.questions.leaveWarning
        file: "LeaveDialog.qml"
        scene: root.scene
    }

    Connections {
        function onTriggered(command: int): void {
            if (command === AppCommands.Switcher)
                root.openSwitcher();
            else if (command === AppCommands.FindEverywhere)
                root.openSearch();
        }

        target: root.scene.commands
    }
}
