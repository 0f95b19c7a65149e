import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// What a check for updates has found.
LMPDialog {
    id: root

    required property WindowScene scene
    readonly property UpdateChecker updates: root.scene.updates

    buttons: root.updates.alertButtons
    escapeIndex: root.buttons.length - 1
    text: root.updates.alertText
    title: root.updates.alertTitle
    unasked: !root.updates.alertAsked

    Component.onCompleted: root.open()
    onChosen: index => root.updates.choose(index)
}
