import QtQuick
import Lumenpair.Shell

/// The screen that the window is at, each read when it is first needed, and the safety cards over all of them.
///
/// The shell is much to make. Where it is likely to come, it is made out of sight, in the time that the service takes to
/// say who is there.
FocusScope {
    id: root

    required property WindowScene scene
    property bool expectsShell: false

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
        if (root.scene.stage === WindowScene.Launch && root.expectsShell)
            root.prepare();
        else if (root.scene.stage === WindowScene.Shell && shell.status !== Loader.Null)
            return root.unveil();
        else if (root.scene.stage !== WindowScene.Launch)
            shell.source = "";
        stage.setSource(root.pane(root.scene.stage), {
            focus: true,
            scene: root.scene
        });
    }

    function prepare(): void {
        root.expectsShell = false;
        shell.setSource("MainShell.qml", {
            focus: true,
            scene: root.scene
        });
    }

    /// What is not made yet of the shell is made now. A loader that is still reading forgets what it was to begin with.
    function unveil(): void {
        const read = shell.status === Loader.Ready || shell.progress === 1;
        if (!read)
            shell.source = "";
        shell.asynchronous = false;
        if (!read)
            root.prepare();
        shell.visible = true;
        shell.focus = true;
        stage.source = "";
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
        id: shell

        anchors.fill: parent
        asynchronous: true
        visible: false
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
