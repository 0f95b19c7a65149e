import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// Shows over the input what another window has put in its place, until the person has chosen between the two; after
/// that, the way back.
Item {
    id: root

    required property ChatModel chat
    readonly property bool asks: root.chat.inputs.inputDraftConflicted

    signal chosen

    height: root.visible ? body.height + 2 * body.y : 0
    visible: root.asks || root.chat.inputs.givenUp

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
            text: root.asks ? root.chat.inputs.inputDraftError : "两份里用了一份。没有用的那一份还在，可以换回来。"
            width: parent.width
        }
        // Whoever wants some of both copies it from here.
        LMPTextArea {
            label: "另一个窗口的内容"
            maximumLines: 4
            minimumLines: 1
            readOnly: true
            text: root.chat.inputs.otherText
            visible: root.asks
            width: parent.width
        }
        Flow {
            spacing: Theme.space8
            visible: root.asks
            width: parent.width

            LMPButton {
                // Nothing never takes the place of something.
                enabled: root.chat.input.length > 0
                text: "保留我的"

                onClicked: {
                    root.chat.inputs.keepMine();
                    root.chosen();
                }
            }
            LMPButton {
                kind: LMPButton.Quiet
                text: "改用另一份"

                onClicked: {
                    root.chat.inputs.takeTheirs();
                    root.chosen();
                }
            }
        }
        Flow {
            spacing: Theme.space8
            visible: !root.asks
            width: parent.width

            LMPButton {
                kind: LMPButton.Quiet
                text: "换回另一份"

                onClicked: {
                    root.chat.inputs.takeBack();
                    root.chosen();
                }
            }
            LMPButton {
                kind: LMPButton.Quiet
                text: "不用了"

                onClicked: {
                    root.chat.inputs.forgetGivenUp();
                    root.chosen();
                }
            }
        }
    }
}
