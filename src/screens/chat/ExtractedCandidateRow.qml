import QtQuick
import Lumenpair.Kit
import Lumenpair.Memory

/// One candidate that was found in the chat.
Item {
    id: root

    required property string candidateId
    required property string content
    required property string why
    required property string scope
    required property bool busy
    required property string handledText

    signal confirmed
    signal dismissed

    implicitHeight: card.implicitHeight
    width: parent ? parent.width : 0

    LMPCard {
        id: card

        accessibleName: root.content
        width: parent.width

        MemoryCandidateBody {
            busy: root.busy
            content: root.content
            handledText: root.handledText
            scope: root.scope
            why: root.why
            width: parent.width
            onConfirmed: root.confirmed()
            onDismissed: root.dismissed()
        }
    }
}
