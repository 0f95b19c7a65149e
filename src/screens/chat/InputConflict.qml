import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// Shows over the input what another window has put in its place, until the person has chosen between the two.
Item {
    id: root

    required property ChatModel chat

    signal chosen

    height: root.visible ? body.height + 2 * body.y : 0
    visible: root.chat.inputDraftConflicted

    Column {
        id: body

        spacing: Theme.space4
        width: parent.width - 2 * x
        x: Theme.space4
        y: Theme.space4

        LMPText {
            Accessible.role: Accessible.AlertMessage
            color: Theme.warning
            kind: LMPText.Caption
            text: root.chat.inputDraftError
            width: parent.width
        }
        // Whoever wants some of both copies it from here.
        LMPTextArea {
            label: "另一个窗口的内容"
            maximumLines: 4
            minimumLines: 1
            readOnly: true
            text: root.chat.otherInputText
            width: parent.width
        }
        Flow {
            spacing: Theme.space8
            width: parent.width

            LMPButton {
                text: "保留我的"

                onClicked: {
                    root.chat.keepMyInput();
                    root.chosen();
                }
            }
            LMPButton {
                kind: LMPButton.Quiet
                text: "改用另一份"

                onClicked: {
                    root.chat.takeOtherInput();
                    root.chosen();
                }
            }
        }
    }
}
