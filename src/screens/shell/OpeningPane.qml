import QtQuick
import Lumenpair.Shell
import Lumenpair.Kit

/// What the window shows while the service is being found, and why it was not.
Item {
    id: root

    required property WindowScene scene

    LMPText {
        anchors.centerIn: parent
        text: root.scene.openError === "" ? "正在启动…" : root.scene.openError
    }
}
