import QtQuick

/// The icon and the words of an LMPButton, in the middle. While it is busy, dots stand in the place of the icon,
/// or of the words where there is none.
Item {
    id: root

    property bool busy: false
    property string iconName
    property color ink: Theme.text
    property int kind: LMPText.Label
    property string text
    property bool underline: false

    implicitHeight: row.implicitHeight
    implicitWidth: words.implicitWidth + (root.iconName === "" ? 0 : icon.width + row.spacing)

    Row {
        id: row

        anchors.centerIn: parent
        opacity: root.busy && root.iconName === "" ? 0 : 1
        spacing: Theme.dp(6)

        LMPIcon {
            id: icon

            anchors.verticalCenter: parent.verticalCenter
            color: root.ink
            name: root.iconName
            opacity: root.busy ? 0 : 1
            size: 16
            visible: root.iconName !== ""
        }

        LMPText {
            id: words

            Accessible.ignored: true
            anchors.verticalCenter: parent.verticalCenter
            color: root.ink
            elide: Text.ElideRight
            font.underline: root.underline
            kind: root.kind
            text: root.text
            width: Math.min(Math.ceil(implicitWidth), root.width - (root.iconName === "" ? 0 : icon.width + row.spacing))
            wrapMode: Text.NoWrap
        }
    }

    Loader {
        active: root.busy
        anchors.verticalCenter: parent.verticalCenter
        source: "LMPSpinner.qml"
        // As far from the words as the icon.
        x: Math.round(root.iconName === "" ? (parent.width - width) / 2 : row.x + icon.width - width)
        onLoaded: (item as LMPSpinner).color = Qt.binding(() => root.ink)
    }
}
