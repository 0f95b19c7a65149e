import QtQuick
import QtQuick.Window
import Lumenpair.Kit
import Lumenpair.Shell

/// One window: its frame, its keys and what lies over every screen. What it shows is its scene's.
Window {
    id: root

    required property WindowScene scene
    /// The stage that it is likely to come to, of WindowScene.Stage; Launch where nothing speaks for one.
    property int expected: WindowScene.Launch

    color: Theme.window
    height: Math.min(root.scene.layout.windowHeight, Screen.desktopAvailableHeight)
    minimumHeight: Math.min(600, Screen.desktopAvailableHeight)
    minimumWidth: Math.min(920, Screen.desktopAvailableWidth)
    title: root.scene.stage === WindowScene.Shell && root.scene.chat.open ? root.scene.chat.title + " — Lumenpair" : "Lumenpair"
    width: Math.min(root.scene.layout.windowWidth, Screen.desktopAvailableWidth)

    onClosing: close => close.accepted = root.scene.mayClose()

    // The theme is one for all windows; each writes the same.
    Binding {
        property: "dark"
        restoreMode: Binding.RestoreNone
        target: Theme
        value: root.scene.appearance.dark
    }

    Binding {
        property: "scale"
        restoreMode: Binding.RestoreNone
        target: Theme
        value: root.scene.appearance.scale
    }

    Binding {
        property: "reducedMotion"
        restoreMode: Binding.RestoreNone
        target: Theme
        value: root.scene.appearance.reducedMotion
    }

    RootPane {
        anchors.fill: parent
        expected: root.expected
        focus: true
        scene: root.scene
    }

    // Keys, menus and questions are read after the first frame: nobody needs them sooner.
    Loader {
        id: later

        function begin(): void {
            if (later.status === Loader.Null)
                later.setSource("WindowExtras.qml", {
                    scene: root.scene
                });
        }

        anchors.fill: parent
        asynchronous: true
    }

    Connections {
        function onFrameSwapped(): void {
            later.begin();
        }

        enabled: later.status === Loader.Null
        target: root
    }
}
