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
    readonly property MemoryCandidateList candidates: ListView.view as MemoryCandidateList

    accessibleName: root.content + "，" + root.why

    MemoryCandidateBody {
        busy: root.busy
        buttonPolicy: root.buttonPolicy
        content: root.content
        scope: root.scope
        why: root.why
        width: parent.width
        onConfirmed: root.candidates.ledger.confirm(root.candidateId)
        onDismissed: root.candidates.ledger.dismiss(root.candidateId)
    }
}
