import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// The tabs, and below them the list of the tab. Collapsed it shows the tabs' icons alone.
FocusScope {
    id: root

    required property WindowScene scene
    property bool collapsed: false
    /// It lies over the page and goes once something is chosen.
    property bool overlaid: false
    readonly property alias tabs: tabs
    readonly property alias list: list
    readonly property bool hasList: list.item !== null

    signal chosen

    function focusTabs(): void {
        tabs.focusCurrent();
    }

    function focusFind(): void {
        const conversations = list.item as SidebarConversations;
        if (conversations)
            conversations.focusFind();
    }

    Accessible.name: "侧栏"
    Accessible.role: Accessible.Pane

    Rectangle {
        anchors.fill: parent
        color: Theme.window
    }

    Item {
        id: head

        height: Theme.dp(44)
        width: parent.width

        LMPText {
            anchors.verticalCenter: parent.verticalCenter
            elide: Text.ElideRight
            kind: LMPText.H3
            text: "Lumenpair"
            visible: !root.collapsed
            width: buttons.x - x
            wrapMode: Text.NoWrap
            x: Theme.dp(16)
        }

        Row {
            id: buttons

            anchors.verticalCenter: parent.verticalCenter
            x: root.collapsed ? Math.round((parent.width - width) / 2) : parent.width - width - Theme.dp(8)

            LMPIconButton {
                iconName: "search"
                text: "快速切换"
                visible: !root.collapsed
                onClicked: root.scene.commands.run(AppCommands.Switcher)
            }

            LMPIconButton {
                iconName: "sidebar"
                text: root.collapsed ? "展开侧栏" : "收起侧栏"
                onClicked: root.overlaid ? root.chosen() : root.scene.commands.run(AppCommands.ToggleSidebar)
            }
        }
    }

    SidebarTabs {
        id: tabs

        anchors.top: head.bottom
        collapsed: root.collapsed
        focus: true
        navigation: root.scene.navigation
        width: parent.width
        onChosen: {
            if (!root.hasList)
                root.chosen();
        }
    }

    LMPSeparator {
        id: line

        anchors.top: tabs.bottom
        anchors.topMargin: Theme.dp(8)
        visible: !root.collapsed && root.hasList
    }

    Loader {
        id: list

        readonly property int tab: root.scene.navigation.tab

        function present(): void {
            const file = list.tab === WindowNavigation.Now ? "SidebarConversations.qml" : list.tab === WindowNavigation.Me ? "SidebarSections.qml" : "";
            list.setSource(file, {
                focus: true,
                scene: root.scene
            });
        }

        Component.onCompleted: list.present()
        anchors.bottom: note.visible ? note.top : parent.bottom
        anchors.bottomMargin: note.visible ? Theme.dp(8) : 0
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.rightMargin: 1
        anchors.top: line.bottom
        anchors.topMargin: Theme.dp(8)
        visible: !root.collapsed
        onLoaded: (list.item as SidebarList).chosen.connect(root.chosen)
        onTabChanged: list.present()
    }

    // A twin that is not all it could be is known for that wherever one begins to talk to it.
    CapabilityNote {
        id: twin

        featureId: "twin.chat"
        store: root.scene.capabilities
    }

    CapabilityNotice {
        id: note

        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.dp(8)
        // The list has the room; the whole of it stands in the settings.
        mostLines: 4
        text: twin.text
        visible: !root.collapsed && list.tab === WindowNavigation.Now && twin.known && twin.level !== CapabilityNote.Full
        width: parent.width - 2 * x
        x: Theme.dp(12)
    }

    Rectangle {
        anchors.right: parent.right
        color: Theme.border
        height: parent.height
        width: 1
    }
}
