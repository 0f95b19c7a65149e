import QtQuick
import Lumenpair.Kit

Item {
    id: root

    LMPText {
        anchors.centerIn: parent
        text: "正在启动…"
    }
}
