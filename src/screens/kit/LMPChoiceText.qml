import QtQuick

/// The words of a switch, a check box or a radio button, and what they mean in smaller type below.
Item {
    id: root

    property bool active: true
    property string description
    property real leftPadding: 0
    property real rightPadding: 0
    property string text

    implicitHeight: column.implicitHeight
    implicitWidth: Math.max(title.implicitWidth, note.visible ? note.implicitWidth : 0) + root.leftPadding + root.rightPadding

    Column {
        id: column

        anchors.verticalCenter: parent.verticalCenter
        width: root.width - root.leftPadding - root.rightPadding
        x: root.leftPadding

        LMPText {
            id: title

            Accessible.ignored: true
            color: root.active ? Theme.text : Theme.disabled
            text: root.text
            width: parent.width
        }

        LMPText {
            id: note

            Accessible.ignored: true
            color: root.active ? Theme.text2 : Theme.disabled
            kind: LMPText.Caption
            text: root.description
            visible: root.description !== ""
            width: parent.width
        }
    }
}
