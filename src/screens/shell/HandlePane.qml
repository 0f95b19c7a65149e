import QtQuick
import Lumenpair.Account
import Lumenpair.Shell

/// Choosing a handle, once, for an account without one.
FocusScope {
    id: root

    required property WindowScene scene

    HandleSetupView {
        anchors.fill: parent
        focus: true
        session: root.scene.session
        onFinished: root.scene.rootView.finishHandleSetup()
    }
}
