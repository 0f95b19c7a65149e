import QtQuick
import Lumenpair.Kit
import Lumenpair.Memory
import Lumenpair.Shell

/// The tab "me": the settings, and over them the ledger of memories. Both keep where they were.
TabPage {
    id: root

    readonly property bool atMemory: root.scene.navigation.page === WindowNavigation.Memory

    SettingsPage {
        anchors.fill: parent
        focus: !root.atMemory
        frame: root.frame
        scene: root.scene
        tab: root.tab
        visible: !root.atMemory
    }

    Loader {
        id: memory

        property bool visited: false

        function visit(): void {
            if (root.atMemory)
                memory.visited = true;
            if (root.atMemory && root.activeFocus)
                memory.forceActiveFocus();
        }

        Component.onCompleted: memory.visit()
        active: memory.visited
        anchors.fill: parent
        focus: root.atMemory
        visible: root.atMemory

        sourceComponent: MemoryPage {
            focus: true
            leading: [
                SidebarButton {
                    visible: root.frame.sidebarHidden
                    onClicked: root.frame.sidebarRequested()
                },
                LMPIconButton {
                    iconName: "chevron-left"
                    text: "回到我的"
                    onClicked: root.scene.navigation.openSection(WindowNavigation.Account)
                }
            ]
            ledger: root.scene.ledger
        }
    }

    onAtMemoryChanged: memory.visit()
}
