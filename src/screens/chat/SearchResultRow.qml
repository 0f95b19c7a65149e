import QtQuick
import QtQuick.Templates as T
import Lumenpair.Kit

/// One message among the results: the conversation it is in, who says it, and the line around the match. The keyboard
/// stays with what is typed.
T.AbstractButton {
    id: root

    required property string excerpt
    required property int index
    required property string speaker
    required property string spoken
    required property string title
    readonly property SearchResults list: ListView.view as SearchResults
    readonly property bool selected: ListView.isCurrentItem

    Accessible.name: root.spoken
    Accessible.role: Accessible.ListItem
    Accessible.selected: root.selected
    focusPolicy: Qt.NoFocus
    hoverEnabled: true
    implicitHeight: lines.height + 2 * Theme.space8
    width: root.list ? root.list.rowWidth : implicitWidth

    background: Rectangle {
        color: root.selected ? Theme.ownBubble : root.hovered ? Theme.hover : "transparent"
        radius: Theme.radiusRow

        // As in other lists: the tint alone is too faint for some eyes.
        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.accent
            height: Math.round(parent.height * 0.5)
            radius: 1.5
            visible: root.selected
            width: 3
        }
    }

    onClicked: root.list.taken(root.index)

    Column {
        id: lines

        spacing: Theme.space2
        width: root.width - 2 * Theme.space12
        x: Theme.space12
        y: Theme.space8

        LMPText {
            Accessible.ignored: true
            color: Theme.text2
            elide: Text.ElideRight
            kind: LMPText.Caption
            text: root.title
            textFormat: Text.PlainText
            width: parent.width
            wrapMode: Text.NoWrap
        }
        LMPText {
            Accessible.ignored: true
            elide: Text.ElideRight
            kind: LMPText.Body
            maximumLineCount: 2
            text: root.speaker + "：" + root.excerpt
            textFormat: Text.StyledText
            width: parent.width
            wrapMode: Text.Wrap
        }
    }
}
