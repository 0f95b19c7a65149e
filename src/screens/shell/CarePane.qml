import QtQuick
import Lumenpair.Account
import Lumenpair.Shell

/// The safety cards and the crisis page, over whatever the window shows.
Item {
    id: root

    required property WindowScene scene

    function follow(): void {
        if (root.scene.navigation.crisisOpen && !cards.pageOpen)
            cards.openCrisisPage();
    }

    Component.onCompleted: root.follow()

    SafetyCards {
        id: cards

        anchors.fill: parent
        resources: root.scene.crisis
        safety: root.scene.safety

        onPageOpenChanged: {
            if (!cards.pageOpen)
                root.scene.navigation.closeCrisis();
        }
    }

    Connections {
        function onOverChanged(): void {
            root.follow();
        }

        target: root.scene.navigation
    }
}
