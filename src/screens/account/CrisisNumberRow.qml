import QtQuick
import Lumenpair.Kit

/// One number: whose it is, the number to be read, and a button that calls it.
Item {
    id: root

    required property string label
    required property string note
    required property string number
    required property string phone

    signal dialled(string number)

    implicitHeight: Math.max(words.implicitHeight, call.height)

    Column {
        id: words

        anchors.verticalCenter: parent.verticalCenter
        width: parent.width - call.width - Theme.space12

        LMPText {
            kind: LMPText.Strong
            text: root.label
            width: parent.width
        }

        LMPText {
            kind: LMPText.H3
            text: root.phone
            width: parent.width
        }

        LMPText {
            color: Theme.text2
            kind: LMPText.Caption
            text: root.note
            visible: root.note !== ""
            width: parent.width
        }
    }

    LMPButton {
        id: call

        Accessible.name: "拨打 " + root.label + " " + root.phone
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        iconName: "phone"
        text: "拨打"
        onClicked: root.dialled(root.number)
    }
}
