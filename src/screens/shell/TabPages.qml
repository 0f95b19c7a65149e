import QtQuick
import Lumenpair.Shell

/// The pages of the tabs. Each is made when it is first gone to, and keeps its state from then on.
FocusScope {
    id: root

    required property WindowScene scene
    /// The pages must offer a way to the sidebar.
    property bool sidebarHidden: false
    readonly property int tab: root.scene.navigation.tab
    readonly property bool covered: root.scene.navigation.unavailableOpen

    signal sidebarRequested

    function visit(): void {
        const pages = [now, social, market, studio, me];
        const files = ["NowTab.qml", "ComingTab.qml", "ComingTab.qml", "ComingTab.qml", "MeTab.qml"];
        const page = pages[root.tab];
        if (page.status === Loader.Null)
            page.setSource(files[root.tab], {
                focus: true,
                frame: root,
                scene: root.scene,
                tab: root.tab
            });
    }

    function cover(): void {
        if (!root.covered) {
            over.source = "";
            return;
        }
        over.setSource("UnavailablePage.qml", {
            focus: true
        });
    }

    function uncover(): void {
        root.scene.navigation.closeUnavailable();
        root.forceActiveFocus();
    }

    function focusComposer(): void {
        root.forceActiveFocus();
        const page = now.item as NowTab;
        if (page)
            page.focusInput();
    }

    Component.onCompleted: {
        root.visit();
        root.cover();
    }
    onCoveredChanged: root.cover()
    onTabChanged: root.visit()

    Loader {
        id: now

        anchors.fill: parent
        focus: visible
        visible: root.tab === WindowNavigation.Now && !root.covered
    }

    Loader {
        id: social

        anchors.fill: parent
        focus: visible
        visible: root.tab === WindowNavigation.Social && !root.covered
    }

    Loader {
        id: market

        anchors.fill: parent
        focus: visible
        visible: root.tab === WindowNavigation.Market && !root.covered
    }

    Loader {
        id: studio

        anchors.fill: parent
        focus: visible
        visible: root.tab === WindowNavigation.Studio && !root.covered
    }

    Loader {
        id: me

        anchors.fill: parent
        focus: visible
        visible: root.tab === WindowNavigation.Me && !root.covered
    }

    Loader {
        id: over

        anchors.fill: parent
        focus: root.covered
        // Not where it is asked for: in a shell that is made ahead it may come later.
        onLoaded: (over.item as UnavailablePage).closed.connect(root.uncover)
    }
}
