import QtQuick
import Lumenpair.Kit

/// One of SignInLinks, made when there is something to click.
Loader {
    id: root

    property bool shown: false
    property string text

    signal clicked

    active: root.shown
    visible: root.shown
    Component.onCompleted: root.setSource("qrc:/qt/qml/Lumenpair/Kit/LMPButton.qml", {
        kind: LMPButton.Link,
        text: root.text
    })
    onLoaded: (root.item as LMPButton).clicked.connect(root.clicked)
}
