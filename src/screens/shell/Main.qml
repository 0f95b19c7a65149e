import QtQuick
import QtQuick.Window
import Lumenpair.Kit
import Lumenpair.Shell

/// One window: its frame, its keys and what lies over every screen. What it shows is its scene's.
Window {
    id: root

    required property WindowScene scene

    color: Theme.window
    height: 800
    title: "Lumenpair"
    width: 1280

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
        scene: root.scene
    }
}
