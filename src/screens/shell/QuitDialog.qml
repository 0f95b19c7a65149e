import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// The program would end, and what was typed is not saved. That shows only when saving has failed, and the wish may have
/// been a signal's: whoever is typing meanwhile did not ask.
LMPDialog {
    id: root

    required property WindowScene scene
    readonly property MacQuitCoordinator quitting: root.scene.quitting

    buttons: [root.quitting.retryText, root.quitting.returnText]
    escapeIndex: 1
    text: root.quitting.warningText
    title: root.quitting.warningMessage
    unasked: true
    z: LMPModal.Leaving

    Component.onCompleted: root.open()
    onChosen: index => index === 0 ? root.quitting.retryAndQuit() : root.quitting.returnToApplication()
}
