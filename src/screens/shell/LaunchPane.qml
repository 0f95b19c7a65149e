import QtQuick
import Lumenpair.Account
import Lumenpair.Kit
import Lumenpair.Shell

/// The launch screen. It says nothing for a moment; meanwhile the line that the window opened with stays, and nothing is
/// read that a start without a question never needs.
FocusScope {
    id: root

    required property WindowScene scene
    readonly property bool due: !patience.running || root.scene.session.waitingOnKeychain || root.scene.session.verificationFailed

    function follow(): void {
        if (!root.due || view.status !== Loader.Null)
            return;
        view.setSource("qrc:/qt/qml/Lumenpair/Account/LaunchView.qml", {
            focus: true,
            quiet: false,
            resources: root.scene.crisis,
            session: root.scene.session
        });
        (view.item as LaunchView).crisisRequested.connect(() => root.scene.navigation.openCrisis());
    }

    Component.onCompleted: root.follow()
    onDueChanged: root.follow()

    Timer {
        id: patience

        interval: 500
        running: true
    }

    Loader {
        id: view

        anchors.fill: parent
        focus: true
    }

    LMPText {
        anchors.centerIn: parent
        color: Theme.text2
        text: "正在启动…"
        visible: view.status !== Loader.Ready
    }
}
