import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// What the window shows while the service is being found, and why it was not.
FocusScope {
    id: root

    required property WindowScene scene
    readonly property bool failed: root.scene.openError !== ""

    LMPText {
        anchors.centerIn: parent
        color: Theme.text2
        text: "正在启动…"
        visible: !root.failed
    }

    Loader {
        active: root.failed
        anchors.centerIn: parent
        focus: true

        sourceComponent: LMPErrorState {
            actionText: "再试一次"
            text: root.scene.openError
            onAction: root.scene.reopen()
        }
    }
}
