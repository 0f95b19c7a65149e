import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// Says over the input that it is not on this machine's disk, or not from there.
Item {
    id: root

    required property ChatModel chat

    Accessible.name: words.text
    Accessible.role: Accessible.AlertMessage
    height: root.visible ? words.height : 0
    visible: root.chat.inputs.inputDraftError !== "" && !root.chat.inputs.inputDraftConflicted

    LMPText {
        id: words

        Accessible.ignored: true
        color: Theme.warning
        kind: LMPText.Caption
        text: root.chat.inputs.inputDraftError
        width: parent.width - 2 * x
        x: Theme.space4
    }
}
