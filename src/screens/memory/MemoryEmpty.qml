import QtQuick
import Lumenpair.Kit
import Lumenpair.Memory

/// Nothing here, or nothing that matches: what that means, and the way on.
Column {
    id: root

    required property MemoryLedgerModel ledger
    readonly property bool searching: root.ledger.total > 0 && (root.ledger.filter === MemoryLedgerModel.All || root.ledger.filter === MemoryLedgerModel.Superseded)

    signal importWanted

    spacing: Theme.space8
    width: Math.min(Theme.dp(420), parent ? parent.width - 2 * Theme.space16 : Theme.dp(420))

    LMPText {
        horizontalAlignment: Text.AlignHCenter
        kind: LMPText.H3
        text: root.ledger.emptyTitle
        width: parent.width
    }

    LMPEmptyState {
        actionKind: LMPButton.Secondary
        actionText: root.searching ? "查看全部" : root.ledger.filter === MemoryLedgerModel.All ? "从文本导入…" : ""
        anchors.horizontalCenter: parent.horizontalCenter
        text: root.ledger.emptyText
        onAction: root.searching ? root.ledger.showAll() : root.importWanted()
    }
}
