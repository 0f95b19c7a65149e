import QtQuick
import Lumenpair.Account
import Lumenpair.Shell

/// What a new person sees first.
FocusScope {
    id: root

    required property WindowScene scene

    OnboardingView {
        anchors.fill: parent
        focus: true
        resources: root.scene.crisis
        onCrisisRequested: root.scene.navigation.openCrisis()
        onFinished: root.scene.rootView.finishOnboarding()
    }
}
