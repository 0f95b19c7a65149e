import QtQuick
import QtQuick.Templates as T

/// A line in the open list of an LMPComboBox.
T.ItemDelegate {
    id: root

    required property int index
    required property string modelData
    readonly property bool chosen: root.list !== null && root.list.chosen === root.index
    readonly property LMPComboList list: ListView.view as LMPComboList

    Accessible.name: root.text
    Accessible.role: Accessible.ListItem
    Accessible.selected: root.chosen
    highlighted: ListView.isCurrentItem
    hoverEnabled: true
    implicitHeight: Math.max(Theme.target, Theme.dp(30))
    leftPadding: Theme.dp(28)
    rightPadding: Theme.space8
    text: root.modelData
    width: root.list ? root.list.width : implicitWidth

    background: Rectangle {
        color: root.highlighted ? Theme.hover : "transparent"
        radius: Theme.radiusControl

        LMPIcon {
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.accent
            name: root.chosen ? "check" : ""
            size: 16
            x: Theme.dp(6)
        }
    }

    contentItem: LMPText {
        Accessible.ignored: true
        elide: Text.ElideRight
        text: root.text
        verticalAlignment: Text.AlignVCenter
        wrapMode: Text.NoWrap
    }
}
