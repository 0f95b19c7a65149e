import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// The memories that a reply drew on, as the service returned them.
LMPSheet {
    id: root

    required property ChatModel chat
    readonly property bool wanted: root.chat.deeds.usedOpen

    primaryText: "知道了"
    secondaryText: ""
    title: "本次用到的记忆"

    onAccepted: root.close()
    onClosed: root.chat.deeds.closeUsed()
    onWantedChanged: {
        if (root.wanted)
            root.open();
        else
            root.close();
    }

    LMPText {
        id: note

        color: Theme.text2
        text: root.chat.deeds.usedMemories.note
        width: note.balanced(parent ? parent.width : 0)
    }
    Repeater {
        model: root.chat.deeds.usedMemories

        delegate: Item {
            id: memory

            required property string content
            required property string truthText

            implicitHeight: card.implicitHeight
            width: parent ? parent.width : 0

            LMPCard {
                id: card

                accessibleName: memory.content + "。" + memory.truthText
                width: parent.width

                LMPText {
                    text: memory.content
                    width: parent.width
                }
                LMPChip {
                    text: memory.truthText
                    visible: text !== ""
                }
            }
        }
    }
}
