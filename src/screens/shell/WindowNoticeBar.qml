import QtQuick
import Lumenpair.Account
import Lumenpair.Kit
import Lumenpair.Shell

/// What is to be known in the whole window, of the window and of the account, until it is closed. It hides nothing.
FocusScope {
    id: root

    required property WindowScene scene

    /// Something of it is about to go, with the keyboard in it.
    signal leaving

    function leave(): void {
        if (root.activeFocus)
            root.leaving();
    }

    implicitHeight: notices.height + Theme.dp(16)

    Rectangle {
        anchors.fill: parent
        color: Theme.surface
    }

    Column {
        id: notices

        spacing: Theme.dp(8)
        width: parent.width - Theme.dp(24)
        x: Theme.dp(12)
        y: Theme.dp(8)

        LMPBanner {
            closable: true
            text: root.scene.notice
            tone: LMPBanner.Warning
            visible: root.scene.notice !== ""
            onClosed: {
                root.leave();
                root.scene.closeNotice();
            }
        }

        LMPBanner {
            closable: true
            text: root.scene.session.notice
            tone: LMPBanner.Warning
            visible: root.scene.session.notice !== ""
            onClosed: {
                root.leave();
                root.scene.session.closeNotice();
            }
        }

        NewAccountNotice {
            session: root.scene.session
            width: parent.width
            onClosing: root.leave()
        }
    }
}
