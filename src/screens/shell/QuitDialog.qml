import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// The program would end, and what was typed is not saved.
LMPDialog {
    id: root

    required property WindowScene scene
    readonly property MacQuitCoordinator quitting: root.scene.quitting

    buttons: [root.quitting.retryText, root.quitting.returnText]
    escapeIndex: 1
    text: root.quitting.warningText
    title: root.quitting.warningMessage

    Component.onCompleted: root.open()
    onChosen: index => index === 0 ? root.quitting.retryAndQuit() : root.quitting.returnToApplication()
}
