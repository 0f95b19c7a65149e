import QtQuick
import Lumenpair.Shell

/// The screen that the window is at. Each is read when it is first needed.
Item {
    id: root

    required property WindowScene scene

    function pane(stage: int): string {
        switch (stage) {
        case WindowScene.Launch:
            return "LaunchPane.qml";
        case WindowScene.SignedOut:
            return "SignedOutPane.qml";
        case WindowScene.Shell:
            return "MainShell.qml";
        }
        return "OpeningPane.qml";
    }

    function present(): void {
        stage.setSource(root.pane(root.scene.stage), {
            scene: root.scene
        });
    }

    Component.onCompleted: root.present()

    Connections {
        function onStageChanged(): void {
            root.present();
        }

        target: root.scene
    }

    Loader {
        id: stage

        anchors.fill: parent
        focus: true
    }
}
