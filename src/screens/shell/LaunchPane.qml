import QtQuick
import Lumenpair.Account
import Lumenpair.Kit
import Lumenpair.Shell

/// The launch screen. It says nothing for a moment; meanwhile the line that the window opened with stays.
FocusScope {
    id: root

    required property WindowScene scene

    LaunchView {
        id: view

        anchors.fill: parent
        focus: true
        resources: root.scene.crisis
        session: root.scene.session
        onCrisisRequested: root.scene.navigation.openCrisis()
    }

    LMPText {
        anchors.centerIn: parent
        color: Theme.text2
        text: "正在启动…"
        visible: !view.shown
    }
}
