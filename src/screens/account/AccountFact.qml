import QtQuick
import Lumenpair.Kit

/// One thing known of the account, by name, with what can be done about it at the right.
Item {
    id: root

    default property alias actions: actionRow.data
    property string label
    property string value

    Accessible.name: root.label + "：" + root.value
    Accessible.role: Accessible.StaticText
    implicitHeight: Math.max(words.implicitHeight, actionRow.height, Theme.target)

    LMPText {
        id: name

        Accessible.ignored: true
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.text2
        kind: LMPText.Label
        text: root.label
        width: Theme.dp(72)
    }

    LMPText {
        id: words

        Accessible.ignored: true
        anchors.verticalCenter: parent.verticalCenter
        text: root.value
        width: parent.width - x - actionRow.width - Theme.space12
        wrapMode: Text.WrapAnywhere
        x: name.width + Theme.space12
    }

    Row {
        id: actionRow

        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
    }
}
