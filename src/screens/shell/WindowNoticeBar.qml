import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// What is to be known in the whole window, until it is closed. It hides nothing.
Rectangle {
    id: root

    required property WindowScene scene

    color: Theme.surface
    implicitHeight: banner.height + Theme.dp(16)

    LMPBanner {
        id: banner

        closable: true
        text: root.scene.notice
        tone: LMPBanner.Warning
        width: parent.width - Theme.dp(24)
        x: Theme.dp(12)
        y: Theme.dp(8)
        onClosed: root.scene.closeNotice()
    }
}
