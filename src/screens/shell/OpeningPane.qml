import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// What the window shows while the service is being found, and why it was not.
FocusScope {
    id: root

    required property WindowScene scene
    readonly property bool failed: root.scene.openError !== ""

    onFailedChanged: {
        if (root.failed)
            error.setSource("OpeningError.qml", {
                focus: true,
                scene: root.scene
            });
        else
            error.source = "";
    }

    LMPText {
        anchors.centerIn: parent
        color: Theme.text2
        text: "正在启动…"
        visible: !root.failed
    }

    // What is in it takes its width from here, so this must not take its own from that.
    Loader {
        id: error

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        focus: true
    }
}
