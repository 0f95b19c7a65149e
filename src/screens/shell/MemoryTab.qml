import QtQuick
import Lumenpair.Kit
import Lumenpair.Memory
import Lumenpair.Shell

/// The ledger of memories, in the tab "me".
TabPage {
    id: root

    Connections {
        function onMemoryFindRequested(): void {
            page.focusFind();
        }

        target: root.scene
    }

    MemoryPage {
        id: page

        anchors.fill: parent
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
