import QtQuick
import Lumenpair.Account
import Lumenpair.Shell

/// The notice about earlier accounts, and what becomes of a person's data behind it.
FocusScope {
    id: root

    required property WindowScene scene

    MigrationNoticeView {
        anchors.fill: parent
        focus: true
        resources: root.scene.crisis
        session: root.scene.session
        onCrisisRequested: root.scene.navigation.openCrisis()
        onFinished: root.scene.rootView.finishMigrationNotice()
        onPrivacyRequested: root.scene.rootView.showPrivacyFromNotice = true
    }

    PrivacySheet {
        shown: root.scene.rootView.showPrivacyFromNotice
        onClosed: root.scene.rootView.showPrivacyFromNotice = false
    }
}
