import QtQuick
import Lumenpair.Kit

/// One tab: its icon and name, or its icon alone with the name as a tip.
FocusScope {
    id: root

    property bool collapsed: false
    property string iconName
    property bool selected: false
    property string title

    signal clicked

    implicitHeight: Math.max(row.implicitHeight, button.implicitHeight)

    LMPRow {
        id: row

        Accessible.role: Accessible.PageTab
        anchors.fill: parent
        focus: !root.collapsed
        iconName: root.iconName
        selected: root.selected
        title: root.title
        visible: !root.collapsed
        onClicked: root.clicked()
    }

    LMPIconButton {
        id: button

        Accessible.role: Accessible.PageTab
        anchors.horizontalCenter: parent.horizontalCenter
        checked: root.selected
        focus: root.collapsed
        iconName: root.iconName
        text: root.title
        visible: root.collapsed
        onClicked: root.clicked()
    }
}
