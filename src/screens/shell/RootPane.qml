import QtQuick
import QtQuick.Window
import Lumenpair.Shell

/// The screen that the window is at, each read when it is first needed, and the safety cards over all of them.
///
/// A screen is much to make. The one that is likely to come is made out of sight, in the time that the keychain and the
/// service take to say who is there.
FocusScope {
    id: root

    required property WindowScene scene
    /// The stage that the launch is likely to end at; Launch where nothing speaks for one. Its screen stands in `next`.
    property int expected: WindowScene.Launch
    /// The stage whose screen stands in `stage`; that of `next` is known by its being visible.
    property int shown: -1

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

    function load(into: Loader, at: int): void {
        into.setSource(root.pane(at), {
            focus: true,
            scene: root.scene
        });
    }

    function present(): void {
        const now = root.scene.stage;
        if (now === root.expected && next.status !== Loader.Null) {
            root.unveil();
            return;
        }
        if (now !== WindowScene.Launch || next.visible)
            root.forget();
        if (now === WindowScene.Launch)
            root.prepare();
        // Nobody sees it before there is a window.
        if (now !== WindowScene.Launch || root.Window.visibility !== Window.Hidden) {
            root.load(stage, now);
            root.shown = now;
            stage.focus = true;
        }
    }

    function prepare(): void {
        if (root.expected === WindowScene.Launch || next.status !== Loader.Null)
            return;
        next.asynchronous = true;
        root.load(next, root.expected);
    }

    function forget(): void {
        next.source = "";
        next.visible = false;
    }

    /// What is not made yet is made now. A loader that is still reading forgets what it was to begin with.
    function unveil(): void {
        const read = next.status === Loader.Ready || next.progress === 1;
        if (!read)
            next.source = "";
        next.asynchronous = false;
        if (!read)
            root.load(next, root.expected);
        next.visible = true;
        next.focus = true;
        stage.source = "";
        root.shown = -1;
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
        id: next

        anchors.fill: parent
        asynchronous: true
        visible: false
    }

    Loader {
        id: over

        anchors.fill: parent
    }

    Connections {
        function onVisibilityChanged(): void {
            if (root.scene.stage === WindowScene.Launch && root.shown !== WindowScene.Launch)
                root.present();
        }

        target: root.Window.window
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
