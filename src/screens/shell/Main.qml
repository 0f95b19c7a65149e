import QtQuick
import QtQuick.Window
import Lumenpair.Kit
import Lumenpair.Account

Window {
    id: root

    color: Theme.window
    height: 800
    title: "Lumenpair"
    visible: true
    width: 1280

    LaunchView {
        anchors.fill: parent
    }
}
