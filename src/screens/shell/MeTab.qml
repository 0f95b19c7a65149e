import QtQuick
import Lumenpair.Shell

/// The tab "me": the settings, and over them the ledger of memories. Both keep where they were.
TabPage {
    id: root

    readonly property bool atMemory: root.scene.navigation.page === WindowNavigation.Memory

    function visit(): void {
        if (root.atMemory && memory.status === Loader.Null)
            memory.setSource("MemoryTab.qml", {
                focus: true,
                frame: root.frame,
                scene: root.scene,
                tab: root.tab
            });
        if (root.atMemory && root.activeFocus)
            memory.forceActiveFocus();
    }

    Component.onCompleted: root.visit()
    onAtMemoryChanged: root.visit()

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

        anchors.fill: parent
        focus: root.atMemory
        visible: root.atMemory
    }
}
