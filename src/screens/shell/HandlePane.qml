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
        resources: root.scene.crisis
        session: root.scene.session
        onCrisisRequested: root.scene.navigation.openCrisis()
        onFinished: root.scene.rootView.finishHandleSetup()
    }
}
