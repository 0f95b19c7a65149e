import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// The signed-in window: the sidebar, and the page of the tab. In a narrow window the sidebar lies over the page, and
/// comes when it is called.
FocusScope {
    id: root

    required property WindowScene scene
    readonly property bool narrow: root.width < Theme.dp(760)
    readonly property bool collapsed: root.scene.layout.sidebarCollapsed && !root.narrow
    readonly property int sidebarWidth: Theme.dp(root.collapsed ? 56 : root.scene.layout.sidebarWidth)
    property bool calledFor: false

    function showSidebar(): void {
        root.calledFor = true;
        sidebar.focusTabs();
    }

    function hideSidebar(): void {
        if (!root.calledFor)
            return;
        root.calledFor = false;
        pages.forceActiveFocus();
    }

    /// Who goes to a page by a key means to use it, wherever the keyboard was.
    function enterPage(): void {
        root.calledFor = false;
        pages.forceActiveFocus(Qt.ShortcutFocusReason);
    }

    /// The regions that F6 goes through.
    function movePane(step: int): void {
        const hasList = sidebar.hasList && !root.collapsed;
        const count = hasList ? 3 : 2;
        const at = pages.activeFocus ? count - 1 : hasList && sidebar.list.activeFocus ? 1 : 0;
        const next = (at + step + count) % count;
        root.calledFor = root.narrow && next !== count - 1;
        if (next === 0)
            sidebar.focusTabs();
        else if (next === count - 1)
            pages.forceActiveFocus(Qt.ShortcutFocusReason);
        else
            sidebar.list.forceActiveFocus(Qt.ShortcutFocusReason);
    }

    function find(): void {
        root.scene.navigation.tab = WindowNavigation.Now;
        if (root.collapsed)
            root.scene.layout.sidebarCollapsed = false;
        root.calledFor = root.narrow;
        sidebar.focusFind();
    }

    onNarrowChanged: root.calledFor = false

    TabPages {
        id: pages

        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.leftMargin: root.narrow ? 0 : root.sidebarWidth
        anchors.right: parent.right
        anchors.top: said.bottom
        focus: true
        scene: root.scene
        sidebarHidden: root.narrow
        onSidebarRequested: root.showSidebar()
    }

    TelemetryNoticeBar {
        id: notice

        anchors.left: pages.left
        anchors.right: pages.right
        anchors.top: parent.top
        telemetry: root.scene.telemetry
        onLeaving: pages.forceActiveFocus(Qt.TabFocusReason)
    }

    Loader {
        id: said

        function follow(): void {
            const session = root.scene.session;
            if (root.scene.notice === "" && session.notice === "" && session.newAccountTitle === "")
                said.source = "";
            else if (said.status === Loader.Null)
                said.setSource("WindowNoticeBar.qml", {
                    scene: root.scene
                });
        }

        anchors.left: pages.left
        anchors.right: pages.right
        anchors.top: notice.bottom
        // An emptied loader keeps its height.
        height: said.item ? (said.item as WindowNoticeBar).implicitHeight : 0

        Component.onCompleted: said.follow()
        onLoaded: (said.item as WindowNoticeBar).leaving.connect(() => pages.forceActiveFocus(Qt.TabFocusReason))
    }

    Connections {
        function onNoticeChanged(): void {
            said.follow();
        }

        target: root.scene
    }

    Connections {
        function onChanged(): void {
            said.follow();
        }

        target: root.scene.session
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.scrim
        visible: root.narrow && root.calledFor

        TapHandler {
            onTapped: root.hideSidebar()
        }
    }

    Sidebar {
        id: sidebar

        Keys.onEscapePressed: event => {
            event.accepted = root.calledFor;
            root.hideSidebar();
        }
        collapsed: root.collapsed
        height: parent.height
        overlaid: root.narrow
        scene: root.scene
        visible: !root.narrow || root.calledFor
        width: root.sidebarWidth
        onChosen: root.hideSidebar()
    }

    SidebarHandle {
        height: parent.height
        layout: root.scene.layout
        visible: !root.collapsed && !root.narrow
        x: sidebar.width - width / 2
    }

    Connections {
        function onTriggered(command: int): void {
            switch (command) {
            case AppCommands.FindList:
                root.find();
                break;
            case AppCommands.NextPane:
                root.movePane(1);
                break;
            case AppCommands.PreviousPane:
                root.movePane(-1);
                break;
            default:
                if (command >= AppCommands.TabNow && command <= AppCommands.Settings)
                    root.enterPage();
            }
        }

        target: root.scene.commands
    }

    Connections {
        function onComposerRequested(): void {
            root.calledFor = false;
            pages.focusComposer();
        }

        target: root.scene
    }
}
