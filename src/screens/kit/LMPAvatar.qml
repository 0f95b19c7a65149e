import QtQuick

/// The first character of a name in a circle. Decoration: the name itself stands beside it.
Rectangle {
    id: root

    property string name
    property real size: 32

    Accessible.ignored: true
    border.color: Theme.border
    border.width: 1
    color: Theme.sunken
    implicitHeight: Theme.dp(root.size)
    implicitWidth: Theme.dp(root.size)
    radius: width / 2

    LMPText {
        Accessible.ignored: true
        anchors.centerIn: parent
        color: Theme.text2
        font.pixelSize: Math.max(12, Math.round(root.width * 0.42))
        font.weight: Font.Medium
        lineHeightMode: Text.ProportionalHeight
        lineHeight: 1
        // By code points, so that a character outside the basic plane is not cut in two.
        text: root.name.trim() === "" ? "" : String.fromCodePoint(root.name.trim().codePointAt(0))
        wrapMode: Text.NoWrap
    }
}
