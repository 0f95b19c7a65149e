import QtQuick
import Lumenpair.Shell

/// The screen that the window is at, each read when it is first needed, and the safety cards over all of them.
FocusScope {
    id: root

    required property WindowScene scene

    function pane(stage: int): string {
        switch (stage) {
        case WindowScene.Launch:
            return "LaunchPane.qml";
        case WindowScene.SignedOut:
            return "SignedOutPane.qml";
        case WindowScene.Migration:
            return "MigrationPane.qml";
        case WindowScene.Onboarding:
            return "OnboardingPane.qml";
        case WindowScene.HandleSetup:
            return "HandlePane.qml";
        case WindowScene.Shell:
            return "MainShell.qml";
        }
        return "OpeningPane.qml";
    }

    function present(): void {
        stage.setSource(root.pane(root.scene.stage), {
            focus: true,
            scene: root.scene
        });
    }

    /// Cards and the crisis page, as soon as there is one to show.
    function care(): void {
        const wanted = root.scene.safety !== null && (root.scene.safety.anyOpen || root.scene.navigation.crisisOpen);
        if (wanted && over.status === Loader.Null)
            over.setSource("CarePane.qml", {
                scene: root.scene
            });
    }

    Component.onCompleted: root.present()

    Loader {
        id: stage

        anchors.fill: parent
        focus: true
    }

    Loader {
        id: over

        anchors.fill: parent
    }

    Connections {
        function onAdopted(): void {
            root.care();
        }

        function onStageChanged(): void {
            root.present();
        }

        target: root.scene
    }

    Connections {
        function onChanged(): void {
            root.care();
        }

        ignoreUnknownSignals: true
        target: root.scene.safety
    }

    Connections {
        function onOverChanged(): void {
            root.care();
        }

        target: root.scene.navigation
    }
}
