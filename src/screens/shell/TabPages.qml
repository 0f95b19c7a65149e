import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// The pages of the tabs. Each is made when it is first gone to, and keeps its state from then on.
FocusScope {
    id: root

    required property WindowScene scene
    /// The pages must offer a way to the sidebar.
    property bool sidebarHidden: false
    readonly property int tab: root.scene.navigation.tab
    readonly property list<string> files: ["NowTab.qml", "ComingTab.qml", "ComingTab.qml", "ComingTab.qml", "SettingsPage.qml"]

    signal sidebarRequested

    function visit(): void {
        const page = pages.itemAt(root.tab) as Loader;
        if (page.status === Loader.Null)
            page.setSource(root.files[root.tab], {
                focus: true,
                scene: root.scene,
                frame: root,
                tab: root.tab
            });
    }

    function focusComposer(): void {
        root.forceActiveFocus();
        const now = pages.itemAt(WindowNavigation.Now) as Loader;
        if (now.item)
            (now.item as NowTab).focusInput();
    }

    Component.onCompleted: root.visit()
    onTabChanged: root.visit()

    Repeater {
        id: pages

        model: root.files.length

        delegate: Loader {
            id: page

            required property int index

            anchors.fill: parent
            focus: page.index === root.tab && !root.scene.navigation.unavailableOpen
            visible: page.index === root.tab
        }
    }

    Loader {
        active: root.scene.navigation.unavailableOpen
        anchors.fill: parent
        focus: active

        sourceComponent: UnavailablePage {
            focus: true
            onClosed: {
                root.scene.navigation.closeUnavailable();
                root.forceActiveFocus();
            }
        }
    }
}
