import QtQuick
import Lumenpair.Account
import Lumenpair.Shell

/// Signing in, and the guest trial.
FocusScope {
    id: root

    required property WindowScene scene

    SignedOutView {
        anchors.fill: parent
        focus: true
        resources: root.scene.crisis
        session: root.scene.session
        onCrisisRequested: root.scene.navigation.openCrisis()
    }
}
