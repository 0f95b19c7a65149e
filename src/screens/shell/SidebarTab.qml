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

    function step(by: int): void {
        const tabs = root.parent.children;
        for (let at = 0; at < tabs.length; ++at) {
            if (tabs[at] === root && at + by >= 0 && at + by < tabs.length)
                tabs[at + by].forceActiveFocus(Qt.TabFocusReason);
        }
    }

    Keys.onDownPressed: root.step(1)
    Keys.onUpPressed: root.step(-1)
    focus: root.selected
    implicitHeight: Math.max(row.implicitHeight, button.implicitHeight)

    width: parent ? parent.width : implicitWidth

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
