import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// What is to be known in the whole window, until it is closed. It hides nothing.
FocusScope {
    id: root

    required property WindowScene scene

    /// It is about to go, with the keyboard in it.
    signal leaving

    function close(): void {
        if (root.activeFocus)
            root.leaving();
        root.scene.closeNotice();
    }

    implicitHeight: banner.height + Theme.dp(16)

    Rectangle {
        anchors.fill: parent
        color: Theme.surface
    }

    LMPBanner {
        id: banner

        closable: true
        text: root.scene.notice
        tone: LMPBanner.Warning
        width: parent.width - Theme.dp(24)
        x: Theme.dp(12)
        y: Theme.dp(8)
        onClosed: root.close()
    }
}
