import QtQuick
import Lumenpair.Memory

/// One candidate of the ledger.
MemoryCard {
    id: root

    required property string candidateId
    required property string content
    required property string why
    required property string scope
    required property bool busy

    accessibleName: root.content + "，" + root.why

    MemoryCandidateBody {
        busy: root.busy
        buttonPolicy: root.buttonPolicy
        content: root.content
        scope: root.scope
        why: root.why
        width: parent.width
        onConfirmed: root.list.ledger.confirm(root.candidateId)
        onDismissed: root.list.ledger.dismiss(root.candidateId)
    }
}
