import QtQuick

/// What an LMPMenuItem shows: a tick or an icon, the words, and at the right the keys that do the same.
Item {
    id: root

    property string iconName
    property color ink: Theme.text
    property color keysInk: Theme.text3
    property bool marked: false
    property string shortcutText
    property string text

    implicitHeight: row.implicitHeight
    implicitWidth: row.implicitWidth + (root.shortcutText === "" ? 0 : keys.implicitWidth + Theme.space24)

    Row {
        id: row

        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.space8

        LMPIcon {
            anchors.verticalCenter: parent.verticalCenter
            color: root.ink
            name: root.iconName
            size: 16
            visible: root.marked || root.iconName !== ""
        }

        LMPText {
            Accessible.ignored: true
            color: root.ink
            text: root.text
            wrapMode: Text.NoWrap
        }
    }

    LMPText {
        id: keys

        Accessible.ignored: true
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        color: root.keysInk
        kind: LMPText.Caption
        text: root.shortcutText
        wrapMode: Text.NoWrap
    }
}
