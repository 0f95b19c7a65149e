import QtQuick
import Lumenpair.Shell
import Lumenpair.Kit

Item {
    id: root

    required property WindowScene scene

    LMPText {
        anchors.centerIn: parent
        text: "Launch"
    }
}
