import QtQuick
import Lumenpair.Kit

/// What a candidate says, why it was proposed, and the two answers to it.
Column {
    id: root

    property bool busy: false
    property int buttonPolicy: Qt.StrongFocus
    property string content
    /// It has been answered: nothing more can be said to it.
    property string handledText
    property string scope
    property string why

    signal confirmed
    signal dismissed

    spacing: Theme.space8

    LMPText {
        text: root.content
        width: parent.width
    }

    LMPText {
        color: Theme.text2
        kind: LMPText.Caption
        text: root.why + (root.why === "" || root.scope === "" ? "" : " · ") + (root.scope === "" ? "" : "用于" + root.scope)
        visible: text !== ""
        width: parent.width
    }

    Row {
        anchors.right: parent.right
        spacing: Theme.space8

        LMPText {
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.text2
            text: root.handledText
            visible: root.handledText !== ""
        }

        LMPSpinner {
            anchors.verticalCenter: parent.verticalCenter
            visible: root.busy
        }

        LMPButton {
            enabled: !root.busy
            focusPolicy: root.buttonPolicy
            text: "不对"
            visible: root.handledText === ""
            onClicked: root.dismissed()
        }

        LMPButton {
            enabled: !root.busy
            focusPolicy: root.buttonPolicy
            kind: LMPButton.Primary
            text: "是这样"
            visible: root.handledText === ""
            onClicked: root.confirmed()
        }
    }
}
