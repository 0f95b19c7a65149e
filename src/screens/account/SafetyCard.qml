import QtQuick
import Lumenpair.Kit

/// A card of care: a symbol, the service's words, what else belongs to them, and the button that closes it.
FocusScope {
    id: root

    property string closeText
    default property alias content: middle.data
    /// A second button, where it has words.
    property string extraText
    property string iconName
    property string text
    property string title

    signal closed
    signal extra

    /// Says that only its button closes it, by giving that the keyboard.
    function pointOut(): void {
        close.forceActiveFocus(Qt.TabFocusReason);
    }

    implicitHeight: card.implicitHeight

    LMPCard {
        id: card

        accessibleName: root.title
        border.color: Theme.care
        spacing: Theme.space12
        stripe: LMPCard.Care
        width: parent.width

        Item {
            Accessible.focusable: true
            Accessible.name: root.title + "。" + root.text
            Accessible.role: Accessible.AlertMessage
            focus: true
            implicitHeight: head.height
            width: parent.width

            Row {
                id: head

                spacing: Theme.space12
                width: parent.width

                LMPIcon {
                    color: Theme.care
                    name: root.iconName
                    size: 24
                }

                Column {
                    spacing: Theme.space4
                    width: parent.width - x

                    LMPText {
                        Accessible.ignored: true
                        color: Theme.care
                        kind: LMPText.Label
                        text: root.title
                        width: parent.width
                    }

                    LMPText {
                        Accessible.ignored: true
                        kind: LMPText.Chat
                        text: root.text
                        width: parent.width
                    }
                }
            }
        }

        Column {
            id: middle

            spacing: Theme.space12
            visible: children.length > 0 && height > 0
            width: parent.width
        }

        Flow {
            layoutDirection: Qt.RightToLeft
            spacing: Theme.space8
            width: parent.width

            LMPButton {
                id: close

                text: root.closeText
                onClicked: root.closed()
            }

            LMPButton {
                kind: LMPButton.Quiet
                text: root.extraText
                visible: root.extraText !== ""
                onClicked: root.extra()
            }
        }
    }
}
